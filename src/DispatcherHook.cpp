// SPDX-License-Identifier: Apache-2.0
// See DispatcherHook.h.

#include "DispatcherHook.h"

#include "Locker.h"

#include <tarn/tarn.h>

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QMap>
#include <QtCore/QPointer>
#include <QtCore/QSocketNotifier>
#include <QtCore/QThread>

#include <memory>
#include <new>
#include <utility>

namespace kelp {

namespace {

constexpr char EVENT_TYPE[] = "tarn_event_t";

// Events that one wake-up takes. More would keep the thread's timers and other descriptors waiting, fewer would cost a
// round of the event loop for each.
constexpr int BATCH = 16;

// The hooks of all threads. Never destroyed: threads may end after this library's static objects.
struct Hooks {
    // Guards the map and every hook's filter. Taken after TarnEventManager's, never held for a filter.
    QMutex mutex;
    QMap<QThread *, DispatcherHook *> byThread;
};

Hooks &hooks()
{
    alignas(Hooks) static char storage[sizeof(Hooks)];
    static Hooks *const all = ::new (storage) Hooks;
    return *all;
}

struct EventDestroyer {
    void operator()(tarn_event_t *event) const { tarn_event_destroy(event); }
};
using Event = std::unique_ptr<tarn_event_t, EventDestroyer>;

Event takeEvent()
{
    tarn_event_t *event = nullptr;
    return Event(tarn_next_event(&event, 0) == TARN_SUCCESS ? event : nullptr);
}

} // namespace

DispatcherHook::EventFilter DispatcherHook::setFilter(QThread *thread, EventFilter filter)
{
    const Locker lock(&hooks().mutex);
    DispatcherHook *hook = hooks().byThread.value(thread);
    if (thread == QThread::currentThread()) {
        QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
        if (!dispatcher) {
            return nullptr; // not made yet, or the application object is going away
        }
        if (!hook && filter) {
            hook = new DispatcherHook(thread, dispatcher);
            hooks().byThread.insert(thread, hook);
        }
        if (filter) {
            hook->watchQueue();
        }
    }
    return hook ? std::exchange(hook->_filter, filter) : nullptr;
}

DispatcherHook::DispatcherHook(QThread *thread, QAbstractEventDispatcher *dispatcher)
    : QObject(dispatcher),
      _thread(thread),
      _dispatcher(dispatcher)
{
    dispatcher->installNativeEventFilter(this);
}

// Tried again at each first subscription: the process may have been out of descriptors before.
void DispatcherHook::watchQueue()
{
    const int descriptor = _notifier ? -1 : tarn_queue_descriptor();
    if (descriptor >= 0) {
        _notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
        connect(_notifier, &QSocketNotifier::activated, this, [this] { pump(); });
    }
}

DispatcherHook::~DispatcherHook()
{
    const Locker lock(&hooks().mutex);
    hooks().byThread.remove(_thread);
}

bool DispatcherHook::nativeEventFilter(const QByteArray &eventType, void *message, NativeEventResult *)
{
    if (eventType != EVENT_TYPE) {
        return false;
    }
    EventFilter filter = nullptr;
    {
        const Locker lock(&hooks().mutex);
        filter = _filter;
    }
    return filter && filter(message);
}

// A handler may run a nested event loop, which pumps too, or end the application object, and this hook with it.
void DispatcherHook::pump()
{
    const QPointer<DispatcherHook> alive(this);
    for (int taken = 0; taken < BATCH && alive; ++taken) {
        const Event event = takeEvent();
        if (!event) {
            return;
        }
        NativeEventResult result = 0;
        _dispatcher->filterNativeEvent(QByteArrayLiteral("tarn_event_t"), event.get(), &result);
    }
}

} // namespace kelp
