// SPDX-License-Identifier: Apache-2.0
// Routes the platform events of a thread to the handlers that subscribed to their domain on that thread. There is one
// manager for each thread with at least one subscription; AbstractTarnEventHandler is the only caller.
#pragma once

#include "DispatcherHook.h"

#include <QtCore/QMap>
#include <QtCore/QMultiMap>
#include <QtCore/QMutex>

namespace kelp {

class AbstractTarnEventHandler;
class HandlerSnapshot;

class TarnEventManager
{
public:
    // On the calling thread.
    static void addHandler(AbstractTarnEventHandler *handler, int domain);
    static void removeHandler(AbstractTarnEventHandler *handler, int domain);

    // On all threads, and from the dispatches under way: the handler is being destroyed.
    static void cleanupHandler(AbstractTarnEventHandler *handler);

    // The filter function of every thread that has a manager. Always false: no event is ever swallowed.
    static bool eventFilter(void *message);

private:
    TarnEventManager() = default;

    // Callers of these hold _mutex.
    static void cleanupManager(QThread *thread);
    static HandlerSnapshot *begin(HandlerSnapshot &snapshot, void *message,
                                  DispatcherHook::EventFilter &previous);
    void registerHandler(AbstractTarnEventHandler *handler, int domain);
    void unregisterHandler(AbstractTarnEventHandler *handler, int domain);
    void unregisterHandlerFromAllDomains(AbstractTarnEventHandler *handler);
    bool isEmpty() const { return _handlers.isEmpty(); }

    static DispatcherHook::EventFilter setEventFilter(QThread *thread, DispatcherHook::EventFilter filter);

    QMultiMap<int, AbstractTarnEventHandler *> _handlers;       // by domain, the latest first; each pair once
    DispatcherHook::EventFilter _previousEventFilter = nullptr; // put back when the manager goes

    static QMap<QThread *, TarnEventManager *> _managerMap; // owns the managers
    // Guards _managerMap, every _handlers and the list of snapshots. Never held for a handler.
    static QMutex _mutex;
};

} // namespace kelp
