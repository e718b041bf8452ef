// SPDX-License-Identifier: Apache-2.0
// How an application ends: told to stop, given a grace that it can prolong, and ended if it overstays. The
// one road, whether the application, a person or the device's shutdown asked for it.
#pragma once

#include "Deadlines.h"
#include "Delivery.h"

namespace kelp::device {

class ExitPath
{
public:
    ExitPath(const Clock &clock, const Settings &settings, NavigatorPort &port, Delivery &delivery,
             Deadlines &deadlines, Journal &journal)
        : _clock(clock),
          _settings(settings),
          _port(port),
          _delivery(delivery),
          _deadlines(deadlines),
          _journal(journal)
    {}

    // Always succeeds: an application that does not read its events is ended all the same. Asked again it
    // only says that it is under way.
    Outcome begin(Application &application);

    // More time before the end.
    Outcome extend(Application &application);

    void terminateReached(const Application &application);
    void killReached(const Application &application);

private:
    const Clock &_clock;
    const Settings &_settings;
    NavigatorPort &_port;
    Delivery &_delivery;
    Deadlines &_deadlines;
    Journal &_journal;
};

} // namespace kelp::device
