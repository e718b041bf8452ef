// SPDX-License-Identifier: Apache-2.0
// See TarnEventManager.h.

#include "TarnEventManager.h"

#include "HandlerSnapshot.h"
#include "Locker.h"

#include <kelp/AbstractTarnEventHandler.h>

#include <tarn/tarn.h>

#include <QtCore/QThread>

#include <memory>

namespace kelp {

QMap<QThread *, TarnEventManager *> TarnEventManager::_managerMap;
QMutex TarnEventManager::_mutex;

void TarnEventManager::addHandler(AbstractTarnEventHandler *handler, int domain)
{
    const Locker lock(&_mutex);
    QThread *thread = QThread::currentThread();
    TarnEventManager *manager = _managerMap.value(thread);
    if (!manager) {
        manager = new TarnEventManager; // the map's
        _managerMap.insert(thread, manager);
        manager->_previousEventFilter = setEventFilter(thread, eventFilter);
    }
    manager->registerHandler(handler, domain);
}

void TarnEventManager::removeHandler(AbstractTarnEventHandler *handler, int domain)
{
    const Locker lock(&_mutex);
    QThread *thread = QThread::currentThread();
    if (TarnEventManager *manager = _managerMap.value(thread)) {
        manager->unregisterHandler(handler, domain);
        cleanupManager(thread);
    }
}

void TarnEventManager::cleanupHandler(AbstractTarnEventHandler *handler)
{
    const Locker lock(&_mutex);
    HandlerSnapshot::forget(handler);
    const QList<QThread *> threads = _managerMap.keys();
    for (QThread *thread : threads) {
        _managerMap.value(thread)->unregisterHandlerFromAllDomains(handler);
        cleanupManager(thread);
    }
}

void TarnEventManager::cleanupManager(QThread *thread)
{
    if (!_managerMap.value(thread)->isEmpty()) {
        return;
    }
    const std::unique_ptr<TarnEventManager> manager(_managerMap.take(thread));
    setEventFilter(thread, manager->_previousEventFilter);
}

DispatcherHook::EventFilter TarnEventManager::setEventFilter(QThread *thread,
                                                             DispatcherHook::EventFilter filter)
{
    return DispatcherHook::setFilter(thread, filter);
}

void TarnEventManager::registerHandler(AbstractTarnEventHandler *handler, int domain)
{
    if (!_handlers.contains(domain, handler)) {
        _handlers.insert(domain, handler);
    }
}

void TarnEventManager::unregisterHandler(AbstractTarnEventHandler *handler, int domain)
{
    _handlers.remove(domain, handler);
}

void TarnEventManager::unregisterHandlerFromAllDomains(AbstractTarnEventHandler *handler)
{
    for (auto entry = _handlers.begin(); entry != _handlers.end();) {
        entry = entry.value() == handler ? _handlers.erase(entry) : std::next(entry);
    }
}

namespace {

// Keeps a snapshot enlisted for the length of a dispatch, through exceptions of handlers too.
class Dispatch
{
public:
    Dispatch(HandlerSnapshot *snapshot, QMutex *mutex) : _snapshot(snapshot), _mutex(mutex) {}
    ~Dispatch()
    {
        if (_snapshot) {
            const Locker lock(_mutex);
            _snapshot->delist();
        }
    }
    Q_DISABLE_COPY(Dispatch)

private:
    HandlerSnapshot *_snapshot;
    QMutex *_mutex;
};

} // namespace

// Fills the snapshot with the calling thread's handlers of the event's domain and enlists it. Returns it, or null when
// there are none.
HandlerSnapshot *TarnEventManager::begin(HandlerSnapshot &snapshot, void *message,
                                         DispatcherHook::EventFilter &previous)
{
    const TarnEventManager *manager = _managerMap.value(QThread::currentThread());
    if (!manager) {
        return nullptr;
    }
    const int domain = tarn_event_get_domain(static_cast<tarn_event_t *>(message));
    const auto end = manager->_handlers.cend();
    for (auto entry = manager->_handlers.constFind(domain); entry != end && entry.key() == domain; ++entry) {
        snapshot.append(entry.value());
    }
    previous = manager->_previousEventFilter;
    if (snapshot.size() == 0) {
        return nullptr;
    }
    snapshot.enlist();
    return &snapshot;
}

bool TarnEventManager::eventFilter(void *message)
{
    HandlerSnapshot snapshot;
    HandlerSnapshot *enlisted = nullptr;
    DispatcherHook::EventFilter previous = nullptr;
    {
        const Locker lock(&_mutex);
        enlisted = begin(snapshot, message, previous);
    }
    {
        const Dispatch dispatch(enlisted, &_mutex);
        for (std::size_t i = 0; i < snapshot.size(); ++i) {
            if (AbstractTarnEventHandler *handler = snapshot.at(i)) {
                handler->event(static_cast<tarn_event_t *>(message));
            }
        }
    }
    if (previous) {
        previous(message);
    }
    return false;
}

} // namespace kelp
