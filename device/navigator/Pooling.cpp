// SPDX-License-Identifier: Apache-2.0
// Begins a pooling, takes its answer, and says so when none came. The deadline is the only record of it.
#include "Pooling.h"

#include "ClientText.h"
#include "NavigatorEvents.h"

#include <cerrno>

namespace kelp::device {

namespace {

constexpr std::size_t MAX_AWAITED = 32; // answers of one application

} // namespace

Outcome Pooling::begin(Application &application)
{
    if (application.isStopping()) {
        return {EPERM, application.id() + " is stopping: it cannot be pooled any more"};
    }
    if (_deadlines.count(application.process(), DeadlineKind::Pool) >= MAX_AWAITED) {
        return {EAGAIN, application.id() + " owes " + std::to_string(MAX_AWAITED) +
                            " answers, the most: try again when it has given one"};
    }
    const std::string id = "pool-" + std::to_string(_lastNumber + 1);
    Outcome sent = _delivery.deliver({{&application, pooledEvent(id)}});
    if (sent.error != 0) {
        return sent;
    }
    ++_lastNumber;
    _deadlines.set({_clock.now() + _settings.poolTimeout, application.process(), DeadlineKind::Pool, id});
    return {0, id};
}

Outcome Pooling::answer(const Application &application, const std::string &id)
{
    if (!_deadlines.remove(application.process(), DeadlineKind::Pool, id)) {
        return {EINVAL, "no answer to " + inQuotes(id) +
                            " is awaited: give the id of the pooled event, once and in time"};
    }
    _journal.note(application, "pooling complete: " + id);
    return {};
}

void Pooling::reached(const Application &application, const std::string &id)
{
    _journal.note(application, "pool reached: no answer to " + id + " in time");
}

} // namespace kelp::device
