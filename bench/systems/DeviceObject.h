// SPDX-License-Identifier: Apache-2.0
// An object of the device that KELP_DEVICE names, open for publishing or subscribing through devicefs.
#pragma once

#include "Update.h"

#include <string>

#include <fcntl.h>

namespace kelp::bench {

class DeviceObject
{
public:
    // Makes the object if it is missing. access: O_WRONLY or O_RDONLY. Throws std::system_error, as all here.
    DeviceObject(const std::string &path, int access);
    ~DeviceObject();
    DeviceObject(DeviceObject &&other) noexcept;
    DeviceObject &operator=(DeviceObject &&) = delete;

    int descriptor() const { return _descriptor; }
    void write(const Update &update);
    // Sequence 0: there is nothing new, or it is not an update.
    Stamp read();

private:
    int _descriptor;
};

} // namespace kelp::bench
