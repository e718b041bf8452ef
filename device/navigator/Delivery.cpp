// SPDX-License-Identifier: Apache-2.0
// The only place that sends events. Asks for room first, so that an event is never half of a change.
#include "Delivery.h"

#include "NavigatorEvents.h"

#include <cerrno>
#include <map>

namespace kelp::device {

Outcome Delivery::roomFor(const Plan &plan)
{
    std::map<ProcessId, std::size_t> needed;
    for (const Step &step : plan) {
        ++needed[step.application->process()];
    }
    for (const Step &step : plan) {
        const ProcessId process = step.application->process();
        if (!_port.hasRoom(process, needed[process])) {
            return {EAGAIN, step.application->id() +
                                " does not read its events: try again when it does, or end it with exit"};
        }
    }
    return {};
}

Outcome Delivery::deliver(const Plan &plan)
{
    Outcome room = roomFor(plan);
    if (room.error == 0) {
        deliverWhatFits(plan);
    }
    return room;
}

void Delivery::deliverWhatFits(const Plan &plan)
{
    for (const auto &[application, event] : plan) {
        application->apply(event);
        send(*application, event);
    }
}

void Delivery::send(const Application &application, const link::Event &event)
{
    if (!reaches(application)) {
        return _journal.note(application, "dropped " + describe(event) + ": it takes no events");
    }
    if (!_port.hasRoom(application.process(), 1)) {
        return _journal.note(application, "dropped " + describe(event) + ": it does not read its events");
    }
    _port.send(application.process(), event);
    _journal.note(application, "sent " + describe(event));
}

void Delivery::tell(ChannelId channel, const Application &application, const link::Event &event)
{
    _port.sendTo(channel, event);
    _journal.note(application, "sent " + describe(event) + " on a new channel");
}

} // namespace kelp::device
