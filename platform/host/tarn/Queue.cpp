// SPDX-License-Identifier: Apache-2.0
// See Queue.h.

#include "Queue.h"

#include "platform/host/NeverDestroyed.h"

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

// Opens another file under the number of a descriptor. The old one is closed first: a process may be at its limit.
template <typename Open>
void reopen(link::UniqueFd &descriptor, Open open)
{
    const int number = descriptor.get();
    descriptor.reset();
    link::UniqueFd opened(open());
    if (opened && opened.get() != number) {
        opened.reset(::dup3(opened.get(), number, O_CLOEXEC));
    }
    descriptor = std::move(opened);
}

// The parent's events in a forked child. Releasing them is the parent's business, so they are never destroyed.
std::list<Event> &leftBehind()
{
    static NeverDestroyed<std::list<Event>> events;
    return *events;
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
    std::list<Event> dropped; // ends after the lock: releasing an event's data is a stranger's code
    {
        const std::lock_guard lock(_mutex);
        if (_begun == 0 || --_begun > 0) {
            return;
        }
    }
    dropSource();
    {
        const std::lock_guard lock(_mutex);
        dropped.swap(_pushed);
        if (!dropped.empty()) {
            clearSignal();
        }
    }
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
    std::list<Event> delivered;
    bool ended = false;
    while (Event event = ended ? Event() : _source->take(ended)) {
        delivered.push_back(std::move(event));
    }
    // By hand: closing does not end the interest while a forked child still has the file open.
    ::epoll_ctl(_descriptor.get(), EPOLL_CTL_DEL, _source->descriptor(), nullptr);
    _source.reset();
    append(delivered);
}

void Queue::append(std::list<Event> &events)
{
    const std::lock_guard lock(_mutex);
    const bool wasEmpty = _pushed.empty();
    _pushed.splice(_pushed.end(), events);
    if (wasEmpty && !_pushed.empty()) {
        raiseSignal();
    }
}

int Queue::push(Event &event)
{
    std::list<Event> one;
    try {
        one.emplace_back(); // before the event is touched: there may be no memory
    } catch (const std::bad_alloc &) {
        return ENOMEM;
    }
    const std::lock_guard lock(_mutex);
    if (_begun == 0) {
        return ESRCH;
    }
    one.front() = std::move(event);
    if (_pushed.empty()) {
        raiseSignal();
    }
    _pushed.splice(_pushed.end(), one);
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
    _source.reset(); // closes the child's copy; the interest in it belongs to the parent's epoll
    reopen(_descriptor, [] { return ::epoll_create1(EPOLL_CLOEXEC); });
    reopen(_signal, [] { return ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); });
    leftBehind().splice(leftBehind().end(), _pushed);
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
    leftBehind().splice(leftBehind().end(), _pushed);
    _begun = 0;
}

} // namespace kelp::platform
