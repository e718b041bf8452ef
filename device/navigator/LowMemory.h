// SPDX-License-Identifier: Apache-2.0
// Tells applications how short memory is: by hand, or as the device's memory pressure has it.
#pragma once

#include "Applications.h"
#include "Delivery.h"

namespace kelp::device {

class LowMemory
{
public:
    LowMemory(const Applications &applications, Delivery &delivery, Journal &journal)
        : _applications(applications),
          _delivery(delivery),
          _journal(journal)
    {}

    // By hand: all of them or, on EAGAIN, none.
    Outcome tell(const std::vector<Application *> &told, int severity);

    // The memory pressure has come to a severity: every application is told, if it is another one. Whoever does not
    // read keeps it from nobody else.
    void setSeverity(int severity);
    std::optional<int> severity() const { return _severity; } // nothing: none has been set

    // The application has just been launched: it is told while memory is short.
    void launched(Application &application);

private:
    const Applications &_applications;
    Delivery &_delivery;
    Journal &_journal;
    std::optional<int> _severity; // of the memory pressure
};

} // namespace kelp::device
