// SPDX-License-Identifier: Apache-2.0
// While one exists, there is no memory for those who ask without exceptions, as the codec and images do. Replaces the
// operators of the program, so that one source file of each program includes it; see KELP_HAS_OPERATORS.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <new>
#include <utility>

class FailingMemory
{
public:
    FailingMemory() { s_isFailing = true; }
    ~FailingMemory() { s_isFailing = false; }
    FailingMemory(const FailingMemory &) = delete;
    FailingMemory &operator=(const FailingMemory &) = delete;

    // Of the last one that was refused, in bytes; 0: none has been since this was asked.
    static std::size_t takeRefused() { return std::exchange(s_refused, 0); }

    static void *allocate(std::size_t size)
    {
        if (!s_isFailing) {
            return std::malloc(size);
        }
        s_refused = size;
        errno = ENOMEM;
        return nullptr;
    }

private:
    static inline bool s_isFailing = false;
    static inline std::size_t s_refused = 0;
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
