// SPDX-License-Identifier: Apache-2.0
// The one object of the process of a kind that threads use until the process's very end, past the destruction of
// static objects.
#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace kelp::platform {

template <typename T>
class NeverDestroyed
{
public:
    NeverDestroyed() { renew(); }
    NeverDestroyed(const NeverDestroyed &) = delete;
    NeverDestroyed &operator=(const NeverDestroyed &) = delete;

    T &operator*() { return *std::launder(reinterpret_cast<T *>(_storage)); }
    T *operator->() { return &**this; }

    // A new object in the place of the old, which is not destroyed: for the child of a fork(), where threads that no
    // longer exist may hold the old one's locks.
    void renew() { std::construct_at(reinterpret_cast<T *>(_storage)); }

private:
    alignas(T) std::byte _storage[sizeof(T)];
};

} // namespace kelp::platform
