// SPDX-License-Identifier: Apache-2.0
// See DeviceObject.h.

#include "DeviceObject.h"

#include <devicefs/devicefs.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace kelp::bench {

DeviceObject::DeviceObject(const std::string &path, int access)
    : _descriptor(devicefs_open(path.c_str(), access | O_CREAT, 0600))
{
    if (_descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "open " + path);
    }
}

DeviceObject::~DeviceObject()
{
    if (_descriptor >= 0) {
        (void)devicefs_close(_descriptor); // a device that has gone has closed it
    }
}

DeviceObject::DeviceObject(DeviceObject &&other) noexcept : _descriptor(std::exchange(other._descriptor, -1))
{}

void DeviceObject::write(const Update &update)
{
    const std::string &text = update.text();
    if (devicefs_write(_descriptor, text.data(), text.size()) < 0) {
        throw std::system_error(errno, std::generic_category(), "devicefs_write");
    }
}

Stamp DeviceObject::read()
{
    char buffer[1024];
    const ssize_t size = devicefs_read(_descriptor, buffer, sizeof buffer);
    if (size < 0) {
        throw std::system_error(errno, std::generic_category(), "devicefs_read");
    }
    return Update::read({buffer, static_cast<std::size_t>(size)});
}

} // namespace kelp::bench
