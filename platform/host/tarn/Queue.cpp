// SPDX-License-Identifier: Apache-2.0
// See Queue.h.

#include "Queue.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

namespace kelp::platform {

namespace {

link::UniqueFd checked(int descriptor, const char *call)
{
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return link::UniqueFd(descriptor);
}

// Gives the file of a descriptor to another number, which loses its own.
void moveTo(int number, int descriptor)
{
    if (descriptor < 0) {
        ::close(number);
        return;
    }
    (void)::dup3(descriptor, number, O_CLOEXEC); // cannot fail: both numbers are open and differ
    ::close(descriptor);
}

} // namespace

Queue::Queue(int id)
    : _id(id),
      _descriptor(checked(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1")),
      _signal(checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd"))
{
    watch(_signal.get());
}

void Queue::watch(int descriptor)
{
    epoll_event interest{};
    interest.events = EPOLLIN;
    interest.data.fd = descriptor;
    if (::epoll_ctl(_descriptor.get(), EPOLL_CTL_ADD, descriptor, &interest) != 0) {
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
    }
}

void Queue::begin()
{
    const std::lock_guard lock(_mutex);
    ++_begun;
}

void Queue::end()
{
    std::deque<Event> dropped; // ends after the lock: releasing an event's data is a stranger's code
    {
        const std::lock_guard lock(_mutex);
        if (_begun == 0 || --_begun > 0) {
            return;
        }
        dropped.swap(_pushed);
        if (!dropped.empty()) {
            clearSignal();
        }
    }
    dropSource();
}

Event Queue::take()
{
    _sourceNext = !_sourceNext;
    Event event = _sourceNext ? takePushed() : takeDelivered();
    if (!event) {
        event = _sourceNext ? takeDelivered() : takePushed();
    }
    return event;
}

Event Queue::takePushed()
{
    const std::lock_guard lock(_mutex);
    if (_pushed.empty()) {
        return {};
    }
    Event event = std::move(_pushed.front());
    _pushed.pop_front();
    if (_pushed.empty()) {
        clearSignal();
    }
    return event;
}

Event Queue::takeDelivered()
{
    if (!_source) {
        return {};
    }
    bool ended = false;
    Event event = _source->take(ended);
    if (ended) {
        dropSource();
    }
    return event;
}

bool Queue::hasSource()
{
    if (_source && _source->hasEnded()) {
        dropSource();
    }
    return _source != nullptr;
}

void Queue::setSource(std::unique_ptr<EventSource> source)
{
    watch(source->descriptor());
    _source = std::move(source);
}

void Queue::dropSource()
{
    if (!_source) {
        return;
    }
    // By hand: closing does not end the interest while a forked child still has the file open.
    ::epoll_ctl(_descriptor.get(), EPOLL_CTL_DEL, _source->descriptor(), nullptr);
    _source.reset();
}

int Queue::push(Event &event)
{
    const std::lock_guard lock(_mutex);
    if (_begun == 0) {
        return ESRCH;
    }
    _pushed.push_back(std::move(event));
    if (_pushed.size() == 1) {
        raiseSignal();
    }
    return 0;
}

void Queue::raiseSignal()
{
    const std::uint64_t one = 1;
    (void)!::write(_signal.get(), &one, sizeof one); // cannot fail: the counter is 0
}

void Queue::clearSignal()
{
    std::uint64_t count = 0;
    (void)!::read(_signal.get(), &count, sizeof count); // cannot fail: the counter is 1
}

void Queue::startAfresh() noexcept
{
    moveTo(_descriptor.get(), ::epoll_create1(EPOLL_CLOEXEC));
    moveTo(_signal.get(), ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    _source.reset(); // closes the child's copy; the interest in it belongs to the parent's epoll
    _leftBehind.swap(_pushed);
    try {
        watch(_signal.get());
    } catch (const std::system_error &) {
        // No memory: the queue stays silent, and its thread finds out by receiving nothing.
    }
}

void Queue::abandon() noexcept
{
    _descriptor.reset();
    _signal.reset();
    _source.reset();
    _leftBehind.swap(_pushed);
    _begun = 0;
}

} // namespace kelp::platform
