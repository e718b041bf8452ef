// SPDX-License-Identifier: Apache-2.0
// The C functions of tarn.h.

#include "QueueRegistry.h"
#include "platform/host/Result.h"

#include <atomic>
#include <chrono>
#include <cstdlib>

#include <poll.h>

using namespace kelp::platform;

namespace {

std::atomic<int> s_lastDomain{0};

Queue *ownQueue()
{
    return QueueRegistry::instance().own();
}

// Waits until the queue is readable or the moment has come. Returns 0, or the errno of poll(2).
int waitForEvent(const Queue &queue, bool limited, std::chrono::steady_clock::time_point moment)
{
    if (queue.descriptor() < 0) {
        return EBADF;
    }
    int timeoutMs = -1;
    if (limited) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(moment - std::chrono::steady_clock::now());
        timeoutMs = static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
    }
    pollfd readable{queue.descriptor(), POLLIN, 0};
    return ::poll(&readable, 1, timeoutMs) < 0 ? errno : 0;
}

// The next event, for which the calling thread waits. Returns 0, or an errno; event stays empty when time ran out.
int nextEvent(Queue &queue, int timeoutMs, Event &event)
{
    const bool limited = timeoutMs >= 0;
    const auto moment = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!(event = queue.take())) {
        if (limited && std::chrono::steady_clock::now() >= moment) {
            return 0;
        }
        if (const int error = waitForEvent(queue, limited, moment)) {
            return error;
        }
    }
    return 0;
}

} // namespace

int tarn_initialize(void)
{
    return resultOf([] {
        Queue *queue = ownQueue();
        if (!queue) {
            return errno;
        }
        queue->begin();
        return 0;
    });
}

void tarn_shutdown(void)
{
    (void)resultOf([] {
        if (Queue *queue = QueueRegistry::existing()) {
            queue->end();
        }
        return 0;
    });
}

int tarn_queue_descriptor(void)
{
    const Queue *queue = ownQueue();
    return queue ? queue->descriptor() : TARN_FAILURE;
}

int tarn_queue_id(void)
{
    const Queue *queue = ownQueue();
    return queue ? queue->id() : TARN_FAILURE;
}

int tarn_next_event(tarn_event_t **event, int timeout_ms)
{
    return resultOf([=] {
        Queue *queue = QueueRegistry::existing();
        if (!event || !queue || !queue->isBegun()) {
            return EINVAL;
        }
        Event next = queue->take();
        if (!next && timeout_ms != 0) {
            if (const int error = nextEvent(*queue, timeout_ms, next)) {
                return error;
            }
        }
        *event = next.release();
        return 0;
    });
}

int tarn_register_domain(void)
{
    return ++s_lastDomain;
}

int tarn_event_create(tarn_event_t **event, int domain, unsigned int code, void *data,
                      void (*release)(void *data))
{
    return resultOf([=] {
        if (!event || domain < 1 || domain > s_lastDomain) {
            return EINVAL;
        }
        auto made = std::make_unique<tarn_event>();
        made->domain = domain;
        made->code = code;
        made->data = data;
        made->release = release;
        *event = made.release();
        return 0;
    });
}

int tarn_event_push(int queue_id, tarn_event_t *event)
{
    return resultOf([=] {
        if (!event) {
            return EINVAL;
        }
        const std::shared_ptr<Queue> queue = QueueRegistry::instance().find(queue_id);
        if (!queue) {
            return ESRCH;
        }
        Event owned(event);
        const int error = queue->push(owned);
        (void)owned.release(); // the queue's now, or still the caller's
        return error;
    });
}

void tarn_event_destroy(tarn_event_t *event)
{
    const Event owned(event);
}

int tarn_event_get_domain(const tarn_event_t *event)
{
    if (!event) {
        errno = EINVAL;
        return TARN_FAILURE;
    }
    return event->domain;
}

unsigned int tarn_event_get_code(const tarn_event_t *event)
{
    if (!event) {
        errno = EINVAL;
        return 0;
    }
    return event->code;
}

void *tarn_event_get_data(const tarn_event_t *event, int domain)
{
    return event && event->domain == domain ? event->data : nullptr;
}

void tarn_free(void *memory)
{
    std::free(memory);
}
