// SPDX-License-Identifier: Apache-2.0
// One short list in the order of time. The exit path, pooling and rotation set deadlines, the navigator takes
// them.
#include "Deadlines.h"

#include <algorithm>

namespace kelp::device {

namespace {

std::string nameOf(DeadlineKind kind)
{
    switch (kind) {
    case DeadlineKind::Terminate:
        return "terminate";
    case DeadlineKind::Kill:
        return "kill";
    case DeadlineKind::Pool:
        return "pool";
    case DeadlineKind::OrientationCheck:
        return "orientation-check";
    case DeadlineKind::OrientationDone:
        return "orientation-done";
    }
    return {};
}

} // namespace

void Deadlines::set(const Deadline &deadline)
{
    (void)remove(deadline.process, deadline.kind, deadline.id); // there need not be one
    const auto later =
        std::upper_bound(_pending.begin(), _pending.end(), deadline.moment,
                         [](Time moment, const Deadline &pending) { return moment < pending.moment; });
    _pending.insert(later, deadline);
}

bool Deadlines::remove(ProcessId process, DeadlineKind kind, std::string_view id)
{
    return std::erase_if(_pending, [=](const Deadline &pending) {
               return pending.process == process && pending.kind == kind && pending.id == id;
           }) > 0;
}

void Deadlines::removeAll(ProcessId process)
{
    std::erase_if(_pending, [process](const Deadline &pending) { return pending.process == process; });
}

std::optional<Time> Deadlines::momentOf(ProcessId process, DeadlineKind kind) const
{
    for (const Deadline &pending : _pending) {
        if (pending.process == process && pending.kind == kind) {
            return pending.moment;
        }
    }
    return std::nullopt;
}

std::size_t Deadlines::count(ProcessId process, DeadlineKind kind) const
{
    return static_cast<std::size_t>(
        std::count_if(_pending.begin(), _pending.end(), [=](const Deadline &pending) {
            return pending.process == process && pending.kind == kind;
        }));
}

std::optional<Time> Deadlines::next() const
{
    if (_pending.empty()) {
        return std::nullopt;
    }
    return _pending.front().moment;
}

std::optional<Deadline> Deadlines::takeDue(Time now)
{
    if (_pending.empty() || _pending.front().moment > now) {
        return std::nullopt;
    }
    const Deadline due = _pending.front();
    _pending.erase(_pending.begin());
    return due;
}

std::vector<DeadlineState> Deadlines::describe(ProcessId process, Time now) const
{
    std::vector<DeadlineState> states;
    for (const Deadline &pending : _pending) {
        if (pending.process == process) {
            states.push_back(
                {nameOf(pending.kind), pending.id, std::max(pending.moment - now, Duration::zero())});
        }
    }
    return states;
}

} // namespace kelp::device
