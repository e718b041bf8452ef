// SPDX-License-Identifier: Apache-2.0
// Memory that the device and one of its clients both see. The device makes it, of a size that nobody can change any
// more, and passes its descriptor; the client maps it.
#pragma once

#include "UniqueFd.h"

#include <cstddef>
#include <utility>

namespace kelp::link {

class SharedMemory
{
public:
    SharedMemory() = default;
    SharedMemory(SharedMemory &&other) noexcept
        : _address(std::exchange(other._address, nullptr)),
          _size(std::exchange(other._size, 0))
    {}
    SharedMemory &operator=(SharedMemory &&other) noexcept
    {
        std::swap(_address, other._address);
        std::swap(_size, other._size);
        return *this;
    }
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;
    ~SharedMemory();

    // Makes zeroed memory of that size. Returns 0 and sets memory and the descriptor to pass on, or an errno.
    static int create(std::size_t size, SharedMemory &memory, UniqueFd &descriptor);

    // Maps what a descriptor stands for. Returns 0 and sets memory, EPROTO for anything else than what create() makes
    // with at least that size, or an errno.
    static int map(const UniqueFd &descriptor, std::size_t leastSize, SharedMemory &memory);

    char *data() const { return static_cast<char *>(_address); } // null: none
    std::size_t size() const { return _size; }

private:
    SharedMemory(void *address, std::size_t size) : _address(address), _size(size) {}
    static int mapAll(const UniqueFd &descriptor, std::size_t size, SharedMemory &memory);

    void *_address = nullptr;
    std::size_t _size = 0;
};

} // namespace kelp::link
