// SPDX-License-Identifier: Apache-2.0
// While one exists, there is no memory for those who ask without exceptions, as the codec does. Replaces the
// operators of the program, so that one source file of each program includes it.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <new>

class FailingMemory
{
public:
    FailingMemory() { s_isFailing = true; }
    ~FailingMemory() { s_isFailing = false; }

    static void *allocate(std::size_t size)
    {
        errno = s_isFailing ? ENOMEM : errno;
        return s_isFailing ? nullptr : std::malloc(size);
    }

private:
    static inline bool s_isFailing = false;
};

// Not inlined: g++ would see one of a pair without the other, and warn.
// clang-format off
void *operator new(std::size_t size) { if (void *memory = std::malloc(size)) { return memory; } throw std::bad_alloc(); }
void *operator new[](std::size_t size) { return operator new(size); }
void *operator new(std::size_t size, const std::nothrow_t &) noexcept { return FailingMemory::allocate(size); }
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept { return FailingMemory::allocate(size); }
[[gnu::noinline]] void operator delete(void *memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void *memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void *memory, std::size_t) noexcept { std::free(memory); }
// clang-format on
