// SPDX-License-Identifier: Apache-2.0
// A file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>
#include <utility>

namespace kelp::link {

class UniqueFd
{
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : _fd(fd) {}
    UniqueFd(UniqueFd &&other) noexcept : _fd(other.release()) {}
    UniqueFd &operator=(UniqueFd &&other) noexcept
    {
        reset(other.release());
        return *this;
    }
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;
    ~UniqueFd() { reset(); }

    int get() const { return _fd; } // -1: none
    explicit operator bool() const { return _fd >= 0; }
    int release() { return std::exchange(_fd, -1); }
    void reset(int fd = -1)
    {
        if (_fd >= 0) {
            ::close(_fd);
        }
        _fd = fd;
    }

private:
    int _fd = -1;
};

} // namespace kelp::link
