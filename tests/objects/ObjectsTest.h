// SPDX-License-Identifier: Apache-2.0
// A real device on a thread of the test's own process, and the process as its client, through the C functions.
#pragma once

#include "tests/doors/DoorTest.h"

#include <devicefs/devicefs.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <poll.h>

namespace kelp::test {

// An open object that is closed with its owner.
class Opened
{
public:
    explicit Opened(const std::string &path, int flags = O_RDONLY, mode_t mode = 0666)
        : _fd(devicefs_open(path.c_str(), flags, mode))
    {}
    ~Opened() { close(); }
    Opened(const Opened &) = delete;
    Opened &operator=(const Opened &) = delete;

    int fd() const { return _fd; }
    void close()
    {
        if (_fd >= 0) {
            EXPECT_EQ(devicefs_close(std::exchange(_fd, -1)), 0);
        }
    }

    // The text, or the name of what the read gave instead: "nothing" for 0 bytes.
    std::string read(std::size_t size = 65536) const
    {
        std::string buffer(size, '?');
        const ssize_t length = devicefs_read(_fd, buffer.data(), size);
        if (length <= 0) {
            return length == 0 ? "nothing" : ::strerrorname_np(errno);
        }
        return buffer.substr(0, static_cast<std::size_t>(length));
    }

    // 0 or the errno.
    int write(const std::string &text) const
    {
        const ssize_t written = devicefs_write(_fd, text.data(), text.size());
        return written == static_cast<ssize_t>(text.size()) ? 0 : errno;
    }

    bool isReadable() const { return polled(0) & POLLIN; }
    short polled(int timeoutMs) const
    {
        pollfd descriptor{_fd, POLLIN, 0};
        return ::poll(&descriptor, 1, timeoutMs) > 0 ? descriptor.revents : short{0};
    }

private:
    int _fd;
};

class ObjectsTest : public DoorTest
{
protected:
    ObjectsTest() { start(); }

    void start()
    {
        startDevice();
        ::setenv("KELP_DEVICE", directory().c_str(), 1);
    }
};

// The errno of opening, or 0.
inline int openError(const std::string &path, int flags = O_RDONLY)
{
    errno = 0;
    const Opened opened(path, flags);
    return opened.fd() >= 0 ? 0 : errno;
}

} // namespace kelp::test
