// SPDX-License-Identifier: Apache-2.0
// A device in a process of its own, as kelp-device is one, but with bounds that a benchmark may set.
#pragma once

#include "bench/ChildProcess.h"
#include "device/Device.h"

#include <string>

namespace kelp::bench {

class DeviceProcess
{
public:
    explicit DeviceProcess(const device::DeviceOptions &options = {});

    // What KELP_DEVICE must be for its clients.
    const std::string &directory() const { return _directory; }
    pid_t pid() const { return _process.pid(); }

private:
    ChildProcess _process;
    std::string _directory;
};

// Lets this process, and those that it starts, have as many open descriptors as the system allows.
void raiseDescriptorLimit();

} // namespace kelp::bench
