// SPDX-License-Identifier: Apache-2.0
// The recording platform's queues, and the C functions of tarn.h.

#include "Recorder.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <deque>
#include <mutex>

#include <sys/eventfd.h>
#include <unistd.h>

namespace kelp::test {

namespace {

using Event = std::unique_ptr<tarn_event>;

std::atomic<int> s_lastDomain{1};
constexpr int NAVIGATOR_DOMAIN = 1;

} // namespace

// Every function takes the queue's lock.
class Queue
{
public:
    Queue() = default;
    Queue(const Queue &) = delete;
    Queue &operator=(const Queue &) = delete;
    ~Queue() { ::close(descriptor); }

    // A token for each event: readable exactly while there is one.
    const int descriptor = ::eventfd(0, EFD_SEMAPHORE | EFD_NONBLOCK | EFD_CLOEXEC);

    // Adds to the initialisations in force, down to none, which drops the events. Returns how many there are.
    int begin(int count)
    {
        const std::lock_guard lock(_mutex);
        _begun = std::max(0, _begun + count);
        while (_begun == 0 && takeLocked()) {
        }
        return _begun;
    }
    bool push(Event &event)
    {
        const std::lock_guard lock(_mutex);
        if (_begun > 0) {
            _events.push_back(std::move(event));
            ::eventfd_write(descriptor, 1);
        }
        return _begun > 0;
    }
    Event take()
    {
        const std::lock_guard lock(_mutex);
        return takeLocked();
    }
    std::size_t pending() const
    {
        const std::lock_guard lock(_mutex);
        return _events.size();
    }

private:
    Event takeLocked()
    {
        if (_events.empty()) {
            return nullptr;
        }
        eventfd_t token = 0;
        ::eventfd_read(descriptor, &token);
        Event event = std::move(_events.front());
        _events.pop_front();
        return event;
    }

    mutable std::mutex _mutex; // guards the rest
    std::deque<Event> _events;
    int _begun = 0;
};

namespace {

struct OwnQueue {
    std::shared_ptr<Queue> queue = std::make_shared<Queue>();
    ~OwnQueue() { queue->begin(-1000000); } // of an ending thread: it takes no more events
};

const std::shared_ptr<Queue> &ownQueue()
{
    thread_local const OwnQueue own;
    return own.queue;
}

int failed(int error)
{
    errno = error;
    return TARN_FAILURE;
}

} // namespace

ThreadQueue ThreadQueue::ofThisThread()
{
    return ThreadQueue(ownQueue());
}

bool ThreadQueue::post(int domain, unsigned int code, const Fields &fields) const
{
    Event event(new tarn_event{domain, code, fields});
    return _queue->push(event);
}

bool ThreadQueue::postOwn(unsigned int code, const Fields &fields) const
{
    return post(NAVIGATOR_DOMAIN, code, fields);
}

std::size_t ThreadQueue::pending() const
{
    return _queue->pending();
}

} // namespace kelp::test

using namespace kelp::test;

int tarn_initialize(void)
{
    const int result = asked(__func__);
    ownQueue()->begin(result == TARN_SUCCESS ? 1 : 0);
    return result;
}

void tarn_shutdown(void)
{
    told(__func__);
    ownQueue()->begin(-1);
}

int tarn_queue_descriptor(void)
{
    const int result = asked(__func__);
    return result == TARN_SUCCESS ? ownQueue()->descriptor : result;
}

int tarn_queue_id(void)
{
    const int result = asked(__func__);
    return result == TARN_SUCCESS ? 1 : result;
}

int tarn_next_event(tarn_event_t **event, int timeout_ms)
{
    if (const int result = asked(__func__, timeout_ms)) {
        return result;
    }
    Queue &queue = *ownQueue();
    if (!event || queue.begin(0) == 0) {
        return failed(EINVAL);
    }
    *event = queue.take().release(); // without waiting for one
    return TARN_SUCCESS;
}

int tarn_register_domain(void)
{
    told(__func__);
    return ++s_lastDomain;
}

int navigator_get_domain(void)
{
    told(__func__);
    return NAVIGATOR_DOMAIN;
}

int tarn_event_create(tarn_event_t **, int domain, unsigned int code, void *, void (*)(void *))
{
    const int result = asked(__func__, domain, code);
    return result == TARN_SUCCESS ? failed(ENOMEM) : result;
}

int tarn_event_push(int queue_id, tarn_event_t *event)
{
    const int result = asked(__func__, queue_id, shown(event));
    return result == TARN_SUCCESS ? failed(ESRCH) : result;
}

void tarn_event_destroy(tarn_event_t *event)
{
    told(__func__, shown(event));
    delete event;
}

int tarn_event_get_domain(const tarn_event_t *event)
{
    told(__func__, shown(event));
    return event ? event->domain : failed(EINVAL);
}

unsigned int tarn_event_get_code(const tarn_event_t *event)
{
    told(__func__, shown(event));
    return event ? event->code : 0;
}

void *tarn_event_get_data(const tarn_event_t *event, int domain)
{
    told(__func__, shown(event), domain);
    return nullptr;
}

void tarn_free(void *memory)
{
    told(__func__, memory ? "memory" : "NULL");
    std::free(memory);
}
