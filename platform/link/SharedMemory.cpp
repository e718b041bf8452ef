// SPDX-License-Identifier: Apache-2.0
// Sealed memory files: with the size sealed, no access to a mapping can fail because the other end has cut it short.

#include "SharedMemory.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace kelp::link {

namespace {

constexpr int SEALS = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

} // namespace

SharedMemory::~SharedMemory()
{
    if (_address) {
        (void)::munmap(_address, _size); // cannot fail for what mmap() gave
    }
}

int SharedMemory::create(std::size_t size, SharedMemory &memory, UniqueFd &descriptor)
{
    UniqueFd file(::memfd_create("kelp", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!file || ::ftruncate(file.get(), static_cast<off_t>(size)) != 0 ||
        ::fcntl(file.get(), F_ADD_SEALS, SEALS) != 0) {
        return errno;
    }
    if (const int error = mapAll(file, size, memory)) {
        return error;
    }
    descriptor = std::move(file);
    return 0;
}

int SharedMemory::map(const UniqueFd &descriptor, std::size_t leastSize, SharedMemory &memory)
{
    struct stat file {
    };
    const int seals = ::fcntl(descriptor.get(), F_GET_SEALS);
    if (seals < 0 || (seals & SEALS) != SEALS || ::fstat(descriptor.get(), &file) != 0 ||
        static_cast<std::size_t>(file.st_size) < leastSize) {
        return EPROTO;
    }
    return mapAll(descriptor, static_cast<std::size_t>(file.st_size), memory);
}

int SharedMemory::mapAll(const UniqueFd &descriptor, std::size_t size, SharedMemory &memory)
{
    void *address = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor.get(), 0);
    if (address == MAP_FAILED) {
        return errno;
    }
    memory = SharedMemory(address, size);
    return 0;
}

} // namespace kelp::link
