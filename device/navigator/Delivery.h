// SPDX-License-Identifier: Apache-2.0
// Carries out what was planned: sends each event, makes its change in the application's record and traces it.
// A plan is refused as a whole where an application has no room for its events, before anything has changed.
#pragma once

#include "Journal.h"

#include <vector>

namespace kelp::device {

// One event for one process.
struct Step {
    Application *application; // never null
    link::Event event;
};
using Plan = std::vector<Step>;

class Delivery
{
public:
    Delivery(NavigatorPort &port, Journal &journal) : _port(port), _journal(journal) {}

    // Whether an event would reach the application at all.
    bool reaches(const Application &application) const { return _port.takesEvents(application.process()); }

    // EAGAIN where a process has no room for its part of the plan.
    Outcome roomFor(const Plan &plan);

    // All of the plan or, on EAGAIN, nothing.
    Outcome deliver(const Plan &plan);

    // All changes of the plan, whoever reads: an event that finds no room, or no channel, is dropped.
    void deliverWhatFits(const Plan &plan);

    // One event for one channel of the application. It changes nothing.
    void tell(ChannelId channel, const Application &application, const link::Event &event);

private:
    void send(const Application &application, const link::Event &event);

    NavigatorPort &_port;
    Journal &_journal;
};

} // namespace kelp::device
