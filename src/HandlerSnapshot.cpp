// SPDX-License-Identifier: Apache-2.0
// See HandlerSnapshot.h.

#include "HandlerSnapshot.h"

#include <utility>

namespace kelp {

HandlerSnapshot *HandlerSnapshot::s_first = nullptr;

void HandlerSnapshot::append(AbstractTarnEventHandler *handler)
{
    if (_size == _capacity) {
        grow();
    }
    entries()[_size++].store(handler, std::memory_order_relaxed);
}

void HandlerSnapshot::grow()
{
    auto more = std::make_unique<Entry[]>(2 * _capacity);
    for (std::size_t i = 0; i < _size; ++i) {
        more[i].store(at(i), std::memory_order_relaxed);
    }
    _more = std::move(more);
    _capacity *= 2;
}

void HandlerSnapshot::enlist()
{
    _next = s_first;
    if (_next) {
        _next->_previous = this;
    }
    s_first = this;
}

void HandlerSnapshot::delist()
{
    (_previous ? _previous->_next : s_first) = _next;
    if (_next) {
        _next->_previous = _previous;
    }
}

void HandlerSnapshot::forget(AbstractTarnEventHandler *handler)
{
    for (HandlerSnapshot *snapshot = s_first; snapshot; snapshot = snapshot->_next) {
        for (std::size_t i = 0; i < snapshot->_size; ++i) {
            if (snapshot->at(i) == handler) {
                snapshot->entries()[i].store(nullptr, std::memory_order_release);
            }
        }
    }
}

} // namespace kelp
