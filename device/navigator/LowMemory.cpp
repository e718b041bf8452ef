// SPDX-License-Identifier: Apache-2.0
// See LowMemory.h.
#include "LowMemory.h"

#include "NavigatorEvents.h"
#include "StateNames.h"

namespace kelp::device {

namespace {

Plan planFor(const std::vector<Application *> &told, int severity)
{
    Plan plan;
    for (Application *application : told) {
        plan.push_back({application, lowMemoryEvent(severity)});
    }
    return plan;
}

} // namespace

Outcome LowMemory::tell(const std::vector<Application *> &told, int severity)
{
    return _delivery.deliver(planFor(told, severity));
}

void LowMemory::setSeverity(int severity)
{
    const int before = _severity.value_or(NAVIGATOR_MEMORY_CLEAR);
    _severity = severity;
    _journal.note("memory pressure is " + std::string(memorySeverityName(severity)));
    if (severity != before) {
        _delivery.deliverWhatFits(planFor(_applications.launched(), severity));
    }
}

void LowMemory::launched(Application &application)
{
    if (_severity.value_or(NAVIGATOR_MEMORY_CLEAR) != NAVIGATOR_MEMORY_CLEAR) {
        _delivery.deliverWhatFits(planFor({&application}, *_severity));
    }
}

} // namespace kelp::device
