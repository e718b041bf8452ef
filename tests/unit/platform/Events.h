// SPDX-License-Identifier: Apache-2.0
// Events of the platform as the tests make, push and take them.
#pragma once

#include <tarn/tarn.h>

#include <cerrno>
#include <memory>

#include <poll.h>

struct EventDestroyer {
    void operator()(tarn_event_t *event) const { tarn_event_destroy(event); }
};
using EventPointer = std::unique_ptr<tarn_event_t, EventDestroyer>;

inline int testDomain()
{
    static const int domain = tarn_register_domain();
    return domain;
}

// Pushes an event with that code. Returns 0, or the errno of the push.
inline int pushTo(int queue, unsigned int code, void *data = nullptr, void (*release)(void *) = nullptr)
{
    tarn_event_t *made = nullptr;
    if (tarn_event_create(&made, testDomain(), code, data, release) != TARN_SUCCESS) {
        return errno;
    }
    EventPointer event(made);
    if (tarn_event_push(queue, event.get()) != TARN_SUCCESS) {
        return errno;
    }
    (void)event.release(); // the queue's
    return 0;
}

// The code of the calling thread's next event; 0 when none comes in time.
inline unsigned int nextCode(int timeoutMs = 0)
{
    tarn_event_t *taken = nullptr;
    (void)tarn_next_event(&taken, timeoutMs); // on failure there is no event
    const EventPointer event(taken);
    return event ? tarn_event_get_code(event.get()) : 0;
}

inline bool isReadable(int descriptor)
{
    pollfd readable{descriptor, POLLIN, 0};
    return ::poll(&readable, 1, 0) == 1 && readable.revents == POLLIN;
}
