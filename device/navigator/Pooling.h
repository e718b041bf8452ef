// SPDX-License-Identifier: Apache-2.0
// Pooling: an application is told that it has been pooled, under a fresh id, and its answer is awaited for a
// time.
#pragma once

#include "Deadlines.h"
#include "Delivery.h"

namespace kelp::device {

class Pooling
{
public:
    Pooling(const Clock &clock, const Settings &settings, Delivery &delivery, Deadlines &deadlines,
            Journal &journal)
        : _clock(clock),
          _settings(settings),
          _delivery(delivery),
          _deadlines(deadlines),
          _journal(journal)
    {}

    Outcome begin(Application &application); // the result's text is the id
    Outcome answer(const Application &application, const std::string &id);
    void reached(const Application &application, const std::string &id);

private:
    const Clock &_clock;
    const Settings &_settings;
    Delivery &_delivery;
    Deadlines &_deadlines;
    Journal &_journal;
    unsigned _lastNumber = 0; // of an id, on this device
};

} // namespace kelp::device
