// SPDX-License-Identifier: Apache-2.0
// The platform's events on a thread with a Qt event dispatcher, and the one filter function of the thread that sees
// each of them. TarnEventManager installs its filter here.
//
// A hook does two things. As a pump it watches the descriptor of the thread's platform queue, takes the events off it
// and offers each to the dispatcher's native event filters under the type "tarn_event_t". As one of these filters it
// hands the event to the thread's filter function.
//
// A hook is a child of its dispatcher, made on the dispatcher's own thread, and lives and dies with it.
#pragma once

#include "qtcompat_p.h"

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QObject>

class QAbstractEventDispatcher;
class QSocketNotifier;
class QThread;

namespace kelp {

class DispatcherHook : public QObject, public QAbstractNativeEventFilter
{
public:
    using EventFilter = bool (*)(void *message);

    // Makes filter the filter function of a thread, or with null removes it, and returns the one before. Where the
    // thread has no dispatcher, or never had a filter function and is not the calling thread, nothing changes and
    // null is returned. thread is not looked into: it may have ended.
    static EventFilter setFilter(QThread *thread, EventFilter filter);

    ~DispatcherHook() override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, NativeEventResult *result) override;

private:
    DispatcherHook(QThread *thread, QAbstractEventDispatcher *dispatcher);

    void watchQueue();
    void pump();

    QThread *const _thread; // a key, never looked into
    QAbstractEventDispatcher *const _dispatcher;
    QSocketNotifier *_notifier = nullptr; // of the queue's descriptor; null where none could be had yet
    EventFilter _filter = nullptr;        // guarded by the lock over all hooks
};

} // namespace kelp
