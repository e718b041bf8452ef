// SPDX-License-Identifier: Apache-2.0
// What an EventLoop::Watch owns: a descriptor's callbacks and its place in the set of what is waited for. It is in there
// for as long as somebody wants to hear of it, so that an event costs no system call of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace kelp::device {

class EpollSet;

class Registration
{
public:
    using Callback = std::function<void()>;

    // What it can call back for, in the order in which it does.
    enum Kind : std::size_t { READABLE, WRITABLE, DOORBELL, HANG_UP, KINDS };

    // The descriptor stays its owner's and open. The set refers to this object: it stays where it is.
    Registration(EpollSet &set, int descriptor) : _set(set), _descriptor(descriptor) {}
    ~Registration();
    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;

    // Throws std::system_error, and has changed nothing then. The former callback may be under way.
    void set(Kind kind, Callback callback);

    // Calls back if these events of epoll(7) are of that kind. The callback may destroy this object.
    void call(Kind kind, std::uint32_t events);

private:
    std::uint32_t eventsWith(Kind changed, bool isWanted) const;
    void registerFor(std::uint32_t events);

    EpollSet &_set;
    int _descriptor;
    std::uint32_t _registered = 0;                                 // for these events; 0: not in the set
    std::array<std::shared_ptr<const Callback>, KINDS> _callbacks; // shared with the call that is under way
};

} // namespace kelp::device
