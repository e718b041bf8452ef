// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_ABSTRACTTARNEVENTHANDLER_H
#define KELP_ABSTRACTTARNEVENTHANDLER_H

#include <kelp/Export.h>

typedef struct tarn_event tarn_event_t;

namespace kelp {

/*!
 * Base of every object that wants platform events on a thread with a Qt event loop.
 *
 * \code
 * class MemoryWatcher : public kelp::AbstractTarnEventHandler
 * {
 * public:
 *     MemoryWatcher() { tarn_initialize(); navigator_request_events(0); subscribe(navigator_get_domain()); }
 *     ~MemoryWatcher() override { tarn_shutdown(); }
 *     bool event(tarn_event_t *event) override { return tarn_event_get_code(event) == NAVIGATOR_LOW_MEMORY && trim(); }
 * };
 * \endcode
 *
 * The platform keeps one event queue per thread. A handler that has subscribed to a domain on a thread receives every
 * event of that domain that arrives on that thread's queue, once, on that thread, while its event loop runs. Initialising
 * the queue and asking a service for its events is the subclass's own business, before or after subscribing.
 *
 * From inside event(), a handler may subscribe and unsubscribe itself and others, make and destroy handlers, and run
 * a nested event loop. Subscriptions count from the next event: a handler that was subscribed when the dispatch of an
 * event began is still called for it after it has been unsubscribed, and is skipped once it has been destroyed.
 *
 * Any QAbstractNativeEventFilter of the thread sees each platform event as well, under the event type "tarn_event_t".
 * One that was installed after the thread's first subscription and returns true keeps the event from the handlers.
 *
 * Threads: subscribe and unsubscribe on the thread that is to receive the events; a subscription is found only on the
 * thread that made it. The handler may be destroyed on any thread, but not while its own event() runs.
 * A thread that has no event dispatcher at its first subscription receives nothing until all its handlers have gone
 * and one subscribes again. After a fork() in a process with several threads, the child must not use handlers, as it
 * must not use Qt, before it has called exec().
 */
class KELP_EXPORT AbstractTarnEventHandler
{
public:
    /*! Subscribes to nothing. */
    AbstractTarnEventHandler();

    /*! Removes every subscription, on all threads. */
    virtual ~AbstractTarnEventHandler();

    AbstractTarnEventHandler(const AbstractTarnEventHandler &) = delete;
    AbstractTarnEventHandler &operator=(const AbstractTarnEventHandler &) = delete;

    /*!
     * Called for each event of a subscribed domain, the handler that subscribed last first.
     *
     * \a event lives until the call returns. Return whether the event was dealt with; every other handler is called
     * all the same.
     */
    virtual bool event(tarn_event_t *event) = 0;

    /*!
     * Receives the events of \a domain that reach the calling thread from now on.
     *
     * Subscribing twice to one domain is the same as once.
     */
    void subscribe(int domain);

    /*!
     * Receives no more events of \a domain on the calling thread.
     *
     * Does nothing without a subscription made on this thread.
     */
    void unsubscribe(int domain);
};

} // namespace kelp

#endif
