// SPDX-License-Identifier: Apache-2.0
// The rules by which window groups come and go: what each move means for the group, for its application and
// for whoever is in front. Each rule gives the events that tell of the move, in their order, and changes
// nothing itself.
//
// At most one group of the device is full screen, and only that one can be active. An application is in the
// foreground exactly while a group of it is full screen, until it stops.
#pragma once

#include "Applications.h"
#include "Delivery.h"

namespace kelp::device {

class WindowPolicy
{
public:
    explicit WindowPolicy(const Applications &applications) : _applications(applications) {}

    // Full screen and active, in place of whoever is in front. The group may be one that is yet to be added.
    Plan bringToFront(Application &application, const WindowGroup &group) const;

    // Thumbnail or invisible.
    Plan stepBack(Application &application, const WindowGroup &group, int windowState) const;

    // The focus of a full-screen group.
    Plan setActive(Application &application, const WindowGroup &group, bool active) const;

private:
    void giveWay(Plan &plan, Application &inFront, const Application &coming) const;

    const Applications &_applications;
};

} // namespace kelp::device
