// SPDX-License-Identifier: Apache-2.0
// Moves window groups, whoever asked for it: refuses what cannot be done, and carries out what the window
// policy plans. Called for requests of applications and for commands alike.
#pragma once

#include "WindowPolicy.h"

namespace kelp::device {

class Windows
{
public:
    Windows(Applications &applications, Delivery &delivery, Journal &journal)
        : _applications(applications),
          _policy(applications),
          _delivery(delivery),
          _journal(journal)
    {}

    // Makes the process an application and shows its main group. Cannot fail: who is displaced and does not
    // read loses the events.
    void launch(Application &application);

    // Tells one channel how things stand.
    void tellState(const Application &application, ChannelId channel);

    Outcome bringToFront(Application &application, const WindowGroup &group);
    Outcome stepBack(Application &application, const WindowGroup &group, int windowState);
    Outcome setActive(Application &application, const WindowGroup &group, bool active);

    // Adds a group with that id, or with the next one of the application's own, in front.
    Outcome open(Application &application, const std::optional<std::string> &id);
    Outcome close(Application &application, const WindowGroup &group);

private:
    Outcome move(const Plan &plan, const std::string &unchanged);
    Outcome checkOpening(const Application &application, const std::optional<std::string> &id) const;

    Applications &_applications;
    WindowPolicy _policy;
    Delivery &_delivery;
    Journal &_journal;
};

} // namespace kelp::device
