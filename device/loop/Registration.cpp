// SPDX-License-Identifier: Apache-2.0
// See Registration.h.

#include "Registration.h"

#include "EpollSet.h"

#include <cassert>
#include <system_error>
#include <utility>

#include <sys/epoll.h>

namespace kelp::device {

namespace {

struct KindEvents {
    std::uint32_t wanted; // asked of the system
    std::uint32_t called; // any of them makes a call
};

constexpr std::uint32_t GONE = EPOLLHUP | EPOLLERR; // reported whether asked for or not

constexpr std::array<KindEvents, Registration::KINDS> EVENTS = {{
    {EPOLLIN, EPOLLIN | GONE},
    {EPOLLOUT, EPOLLOUT | GONE},
    {EPOLLIN | EPOLLET, EPOLLIN},
    {EPOLLRDHUP, EPOLLRDHUP | GONE},
}};

} // namespace

Registration::~Registration()
{
    _set.forget(*this);
    if (_registered) {
        [[maybe_unused]] const int error = _set.change(EPOLL_CTL_DEL, _descriptor, 0, *this);
        assert(error == 0); // else the descriptor was closed before its Watch ended
    }
}

void Registration::set(Kind kind, Callback callback)
{
    auto next = callback ? std::make_shared<const Callback>(std::move(callback)) : nullptr;
    registerFor(eventsWith(kind, next != nullptr)); // may throw: nothing has changed yet
    _callbacks[kind].swap(next);
}

void Registration::call(Kind kind, std::uint32_t events)
{
    if (!(events & EVENTS[kind].called) || !_callbacks[kind]) {
        return;
    }
    const std::shared_ptr<const Callback> callback = _callbacks[kind]; // it may replace itself, or destroy us
    if (kind == HANG_UP) {
        set(kind, {}); // it would be reported for ever
    }
    (*callback)();
}

// All that is wanted, where one kind is (not) and the others are as before.
std::uint32_t Registration::eventsWith(Kind changed, bool isWanted) const
{
    std::uint32_t events = 0;
    for (std::size_t kind = 0; kind < KINDS; ++kind) {
        if (kind == changed ? isWanted : _callbacks[kind] != nullptr) {
            events |= EVENTS[kind].wanted;
        }
    }
    return events;
}

// For no events it must not be in the set at all: a hang-up would be reported for ever to nobody.
void Registration::registerFor(std::uint32_t events)
{
    if (events == _registered) {
        return;
    }
    const int operation = !_registered ? EPOLL_CTL_ADD : events ? EPOLL_CTL_MOD : EPOLL_CTL_DEL;
    if (const int error = _set.change(operation, _descriptor, events, *this)) {
        throw std::system_error(error, std::system_category(), "cannot watch a descriptor");
    }
    _registered = events;
}

} // namespace kelp::device
