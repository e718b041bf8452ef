// SPDX-License-Identifier: Apache-2.0
// The event queue of one thread: what other threads push, and what a service's source delivers, behind one
// descriptor. The C functions of tarn.h act on it.
#pragma once

#include "Event.h"
#include "EventSource.h"
#include "platform/link/UniqueFd.h"

#include <atomic>
#include <list>
#include <memory>
#include <mutex>

namespace kelp::platform {

class Queue
{
public:
    // Throws std::system_error where the system has no descriptor left.
    explicit Queue(int id);

    int id() const { return _id; }

    // An epoll descriptor over the signal of the pushed events and the source: readable while either has something.
    int descriptor() const { return _descriptor.get(); }

    // ---- On the queue's own thread ----

    void begin(); // one more tarn_initialize()
    void end();   // its tarn_shutdown(); the last drops the pending events and the source
    bool isBegun() const { return _begun > 0; }

    Event take(); // the next event, or none; pushed and delivered ones take turns

    bool hasSource();                                    // false also when its service has gone
    void setSource(std::unique_ptr<EventSource> source); // throws std::system_error; the queue has none yet
    void dropSource(); // what it has delivered is pending from now on like what is pushed

    // ---- On any thread ----

    // Takes the event over and returns 0, or leaves it and returns ESRCH (the queue is not begun) or ENOMEM.
    int push(Event &event);

    // ---- Around a fork() ----

    void lock() { _mutex.lock(); }
    void unlock() { _mutex.unlock(); }
    // In the child, which shares the parent's descriptors and must not touch what they stand for: the same numbers
    // for descriptors of its own, no events, no source. Without memory for them, the queue stays silent.
    void startAfresh() noexcept;
    // In the child, for the queue of a thread that does not exist there.
    void abandon() noexcept;

private:
    Event takePushed();
    Event takeDelivered();
    void watch(int descriptor);
    void append(std::list<Event> &events);
    void raiseSignal();
    void clearSignal();

    const int _id;
    link::UniqueFd _descriptor; // epoll
    link::UniqueFd _signal;     // eventfd, readable exactly while _pushed has an event
    std::unique_ptr<EventSource> _source;
    bool _sourceNext = false; // whose turn it is

    // How many tarn_initialize() are in force. Changed with _mutex held, which push() relies on.
    std::atomic<unsigned> _begun{0};

    std::mutex _mutex; // guards the rest
    std::list<Event> _pushed;
};

} // namespace kelp::platform
