/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform events: one queue per thread, on which the platform's services and other threads put events.
 *
 * A thread takes part between tarn_initialize() and tarn_shutdown(). It waits for its queue's descriptor in
 * whatever loop it runs, takes events with tarn_next_event() and ends each with tarn_event_destroy():
 *
 *     tarn_initialize();
 *     navigator_request_events(0);
 *     tarn_event_t *event = NULL;
 *     while (tarn_next_event(&event, -1) == TARN_SUCCESS && event) {
 *         if (tarn_event_get_domain(event) == navigator_get_domain())
 *             handle(event);
 *         tarn_event_destroy(event);
 *     }
 *     tarn_shutdown();
 *
 * Threads: every function may be called from any thread and acts on the calling thread's queue, except
 * tarn_event_push(), which acts on the queue that it is given. One event must not be used by two threads at once.
 *
 * Errors: a function that can fail returns TARN_FAILURE with the cause in errno, and then leaves its outputs as
 * they were. No function changes errno when it succeeds.
 *
 * fork(): the child of a thread that takes part starts with an empty queue under the same descriptor number and
 * the same count of initialisations, and receives no events of the platform's services until it asks for them.
 * The parent notices nothing.
 */
#ifndef TARN_TARN_H
#define TARN_TARN_H

#include <platform/export.h>

#define TARN_SUCCESS 0
#define TARN_FAILURE (-1)

PLATFORM_BEGIN_DECLS

/* One platform event. Opaque: read it with tarn_event_get_*() and the readers of the service that sent it. */
typedef struct tarn_event tarn_event_t;

/* Begins the calling thread's use of platform events. Calls nest: each successful one needs a tarn_shutdown().
 * Returns TARN_SUCCESS, or TARN_FAILURE with the errno of the queue's creation (EMFILE, ENFILE, ENOMEM), or EINVAL
 * while the thread is ending. */
PLATFORM_EXPORT int tarn_initialize(void);

/* Ends what the matching tarn_initialize() began. The last one of a thread drops the events that are still pending
 * and ends every request for a service's events that the thread has made. The queue's descriptor stays valid.
 * Does nothing without a matching tarn_initialize(). */
PLATFORM_EXPORT void tarn_shutdown(void);

/* The descriptor of the calling thread's queue: readable (POLLIN) exactly while an event is pending, and after a
 * service went away until tarn_next_event() has noticed it. Works with poll, select and epoll.
 * The number may be asked for before tarn_initialize(), stays the same until the thread ends, and belongs to the
 * queue: never read, write or close it.
 * Returns TARN_FAILURE with the errno of the queue's creation (EMFILE, ENFILE, ENOMEM), or EINVAL while the thread is
 * ending. */
PLATFORM_EXPORT int tarn_queue_descriptor(void);

/* The number that names the calling thread's queue to tarn_event_push(). Positive, never used twice in a process.
 * Returns TARN_FAILURE with the errno of the queue's creation (EMFILE, ENFILE, ENOMEM), or EINVAL while the thread is
 * ending. */
PLATFORM_EXPORT int tarn_queue_id(void);

/* Takes the next event of the calling thread's queue, waiting up to timeout_ms milliseconds (0: do not wait,
 * negative: no limit).
 * Returns TARN_SUCCESS and sets *event to an event that the caller ends with tarn_event_destroy(), or to NULL when
 * the time ran out. Returns TARN_FAILURE with errno
 *   EINVAL  event is NULL, or the thread has not called tarn_initialize(),
 *   EINTR   a signal handler ran during the wait,
 *   EBADF   the queue has lost its descriptors, in the child of a fork() that had no memory for them. */
PLATFORM_EXPORT int tarn_next_event(tarn_event_t **event, int timeout_ms);

/* A new event domain: the number by which receivers tell one sender's events from another's. Positive, and never
 * given out twice in a process. */
PLATFORM_EXPORT int tarn_register_domain(void);

/* Makes an event of a domain, with a code whose meaning the domain defines and data that only the domain's readers
 * understand. When the event is destroyed, release(data) is called, unless release is NULL; on failure it is not.
 * Returns TARN_SUCCESS and sets *event to an event that the caller hands to tarn_event_push() or ends with
 * tarn_event_destroy(). Returns TARN_FAILURE with errno EINVAL (event is NULL or the domain was never registered)
 * or ENOMEM. */
PLATFORM_EXPORT int tarn_event_create(tarn_event_t **event, int domain, unsigned int code, void *data,
                                      void (*release)(void *data));

/* Puts an event on the queue with the number queue_id, of this thread or another. On success the queue owns it.
 * Events of one pushing thread arrive in the order of its calls.
 * Returns TARN_FAILURE, the event still the caller's, with errno
 *   EINVAL  event is NULL,
 *   ENOMEM  there is no memory for it,
 *   ESRCH   there is no such queue (any more), or its thread does not take part in platform events now. */
PLATFORM_EXPORT int tarn_event_push(int queue_id, tarn_event_t *event);

/* Ends an event that tarn_next_event() or tarn_event_create() has given, and with it everything its readers have
 * returned. NULL is allowed. */
PLATFORM_EXPORT void tarn_event_destroy(tarn_event_t *event);

/* The domain of an event; TARN_FAILURE with errno EINVAL for NULL. */
PLATFORM_EXPORT int tarn_event_get_domain(const tarn_event_t *event);

/* The code of an event, as its domain defines it; 0 with errno EINVAL for NULL. */
PLATFORM_EXPORT unsigned int tarn_event_get_code(const tarn_event_t *event);

/* The data with which an event of the given domain was made; NULL for an event of another domain, or NULL. */
PLATFORM_EXPORT void *tarn_event_get_data(const tarn_event_t *event, int domain);

/* Frees a text that a platform function has handed to the caller. NULL is allowed. */
PLATFORM_EXPORT void tarn_free(void *memory);

PLATFORM_END_DECLS

#endif
