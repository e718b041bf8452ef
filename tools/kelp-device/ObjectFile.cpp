// SPDX-License-Identifier: Apache-2.0
// See ObjectFile.h.

#include "ObjectFile.h"

#include "DeviceClient.h"
#include "DeviceLocation.h"
#include "ObjectFailure.h"

#include <devicefs/devicefs.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <poll.h>

namespace kelp::tool {

namespace {

using Operation = ObjectFailure::Operation;

constexpr char ROOT[] = "/pps";
constexpr mode_t ANYBODY = 0666; // less the umask, as for files

// What poll(2) takes: rounded up, so that the time is up when it says so.
int millisecondsUntil(const std::optional<ObjectFile::Moment> &end)
{
    if (!end) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

} // namespace

void useDevice(const std::string &option)
{
    const std::string directory = deviceDirectory(option);
    const DeviceClient knock(directory); // says better than an errno what is wrong with a device
    useDeviceIn(directory);
}

void useDeviceIn(const std::string &directory)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread reads it yet
    if (::setenv("KELP_DEVICE", directory.c_str(), 1) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot set KELP_DEVICE");
    }
}

void deleteObject(const std::string &path)
{
    if (devicefs_unlink((ROOT + path).c_str()) != 0) {
        throw ObjectFailure(Operation::Delete, path, errno);
    }
}

ObjectFile::ObjectFile(std::string path, int flags, const std::string &options)
    : _path(std::move(path)),
      _descriptor(
          devicefs_open((ROOT + _path + (options.empty() ? "" : "?") + options).c_str(), flags, ANYBODY))
{
    if (_descriptor < 0) {
        throw ObjectFailure(Operation::Open, _path, errno);
    }
}

ObjectFile::~ObjectFile()
{
    (void)devicefs_close(_descriptor); // it is closed whatever the result
}

std::size_t ObjectFile::mostBytes() const
{
    return static_cast<std::size_t>(devicefs_fpathconf(_descriptor, DEVICEFS_PC_OBJECT_MAX));
}

std::string ObjectFile::read()
{
    std::string text(mostBytes(), '\0');
    const ssize_t length = devicefs_read(_descriptor, text.data(), text.size());
    if (length < 0) {
        throw ObjectFailure(Operation::Read, _path, errno);
    }
    text.resize(static_cast<std::size_t>(length));
    return text;
}

bool ObjectFile::awaitNews(const std::optional<Moment> &end)
{
    pollfd news{_descriptor, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&news, 1, millisecondsUntil(end));
    } while (ready < 0 && errno == EINTR);
    if (ready < 0) {
        throw ObjectFailure(Operation::Read, _path, errno);
    }
    return ready > 0;
}

void ObjectFile::write(const std::string &text)
{
    if (devicefs_write(_descriptor, text.data(), text.size()) < 0) {
        throw ObjectFailure(Operation::Write, _path, errno);
    }
}

} // namespace kelp::tool
