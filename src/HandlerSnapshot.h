// SPDX-License-Identifier: Apache-2.0
// The handlers that one event is dispatched to, as they were subscribed when its dispatch began. While it exists,
// forget() takes a handler that is being destroyed out of it. Made and used by TarnEventManager.
#pragma once

#include <QtCore/QtGlobal>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>

namespace kelp {

class AbstractTarnEventHandler;

class HandlerSnapshot
{
public:
    HandlerSnapshot() = default;

    // ---- Caller holds the manager's lock ----

    void append(AbstractTarnEventHandler *handler);
    void enlist(); // among the snapshots that forget() looks through
    void delist();
    static void forget(AbstractTarnEventHandler *handler); // in all snapshots

    // ---- Without the lock ----

    std::size_t size() const { return _size; }
    // Null: the handler has been destroyed since.
    AbstractTarnEventHandler *at(std::size_t index) const
    {
        return entries()[index].load(std::memory_order_acquire);
    }

private:
    Q_DISABLE_COPY(HandlerSnapshot)

    using Entry = std::atomic<AbstractTarnEventHandler *>;

    const Entry *entries() const { return _more ? _more.get() : _few.data(); }
    Entry *entries() { return _more ? _more.get() : _few.data(); }
    void grow();

    static HandlerSnapshot *s_first; // the enlisted ones

    std::size_t _size = 0;
    std::size_t _capacity = FEW;
    HandlerSnapshot *_next = nullptr;
    HandlerSnapshot *_previous = nullptr;
    std::unique_ptr<Entry[]> _more; // once there are more than FEW

    static constexpr std::size_t FEW = 16;
    std::array<Entry, FEW> _few;
};

} // namespace kelp
