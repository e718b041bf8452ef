// SPDX-License-Identifier: Apache-2.0
// See QueueRegistry.h.

#include "QueueRegistry.h"

#include "platform/host/NeverDestroyed.h"

#include <cerrno>
#include <new>
#include <system_error>

#include <pthread.h>

namespace kelp::platform {

namespace {

// Trivial, so that they can be asked even after the holder of this thread has been destroyed.
thread_local Queue *t_queue = nullptr;
thread_local bool t_ending = false;

} // namespace

class QueueRegistry::Holder
{
public:
    Holder() = default;
    Holder(const Holder &) = delete;
    Holder &operator=(const Holder &) = delete;
    ~Holder()
    {
        t_ending = true;
        t_queue = nullptr;
        if (_queue) {
            QueueRegistry::instance().remove(_queue->id());
        }
    }

    void hold(std::shared_ptr<Queue> queue)
    {
        t_queue = queue.get();
        _queue = std::move(queue);
    }

private:
    std::shared_ptr<Queue> _queue;
};

QueueRegistry &QueueRegistry::instance()
{
    static NeverDestroyed<QueueRegistry> registry;
    return *registry;
}

QueueRegistry::QueueRegistry()
{
    (void)::pthread_atfork(
        [] { instance().lockAll(); }, [] { instance().unlockAll(); },
        [] { instance().restartInChild(); }); // without memory for it, fork() is the caller's risk
}

Queue *QueueRegistry::own()
{
    if (t_queue) {
        return t_queue;
    }
    if (t_ending) {
        errno = EINVAL;
        return nullptr;
    }
    try {
        thread_local Holder holder;
        holder.hold(create());
    } catch (const std::system_error &error) {
        errno = error.code().value();
    } catch (const std::bad_alloc &) {
        errno = ENOMEM;
    }
    return t_queue;
}

Queue *QueueRegistry::existing()
{
    return t_queue;
}

std::shared_ptr<Queue> QueueRegistry::find(int id)
{
    const std::lock_guard lock(_mutex);
    const auto found = _queues.find(id);
    return found == _queues.end() ? nullptr : found->second;
}

std::shared_ptr<Queue> QueueRegistry::create()
{
    const std::lock_guard lock(_mutex);
    auto queue = std::make_shared<Queue>(_lastId + 1);
    _queues.emplace(queue->id(), queue);
    ++_lastId;
    return queue;
}

void QueueRegistry::remove(int id)
{
    const std::lock_guard lock(_mutex);
    _queues.erase(id);
}

// The order is registry, then queues; nothing takes a queue's lock and then the registry's.
void QueueRegistry::lockAll()
{
    _mutex.lock();
    for (const auto &[id, queue] : _queues) {
        queue->lock();
    }
}

void QueueRegistry::unlockAll()
{
    for (const auto &[id, queue] : _queues) {
        queue->unlock();
    }
    _mutex.unlock();
}

// The queues of the other threads stay, silent and without descriptors: a push from the child finds ESRCH.
void QueueRegistry::restartInChild()
{
    for (const auto &[id, queue] : _queues) {
        if (queue.get() == t_queue) {
            queue->startAfresh();
        } else {
            queue->abandon();
        }
    }
    unlockAll();
}

} // namespace kelp::platform
