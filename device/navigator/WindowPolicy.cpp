// SPDX-License-Identifier: Apache-2.0
// Each rule as a list of events. Called by Windows, which checks first and delivers afterwards.
#include "WindowPolicy.h"

#include "NavigatorEvents.h"

namespace kelp::device {

namespace {

// A group loses the focus, if it has it, and then its place on the screen.
void leaveScreen(Plan &plan, Application &application, const WindowGroup &group, int windowState)
{
    if (group.active) {
        plan.push_back({&application, inactiveEvent(group.id)});
    }
    plan.push_back({&application, windowStateEvent(group.id, windowState)});
}

// A stopping application stays so, wherever its windows go.
void changeState(Plan &plan, Application &application, int appState)
{
    if (!application.isStopping() && application.state() != appState) {
        plan.push_back({&application, appStateEvent(appState)});
    }
}

} // namespace

void WindowPolicy::giveWay(Plan &plan, Application &inFront, const Application &coming) const
{
    const WindowGroup &group = *inFront.fullScreenGroup();
    if (&inFront == &coming) {
        leaveScreen(plan, inFront, group, NAVIGATOR_WINDOW_INVISIBLE);
        return;
    }
    leaveScreen(plan, inFront, group, NAVIGATOR_WINDOW_THUMBNAIL);
    changeState(plan, inFront, NAVIGATOR_APP_BACKGROUND);
}

Plan WindowPolicy::bringToFront(Application &application, const WindowGroup &group) const
{
    Plan plan;
    for (Application *other : _applications.launched()) {
        const WindowGroup *inFront = other->fullScreenGroup();
        if (inFront && inFront->id != group.id) {
            giveWay(plan, *other, application);
        }
    }
    changeState(plan, application, NAVIGATOR_APP_FOREGROUND);
    if (!group.isFullScreen()) {
        plan.push_back({&application, windowStateEvent(group.id, NAVIGATOR_WINDOW_FULLSCREEN)});
    }
    if (!group.active) {
        plan.push_back({&application, activeEvent(group.id)});
    }
    return plan;
}

Plan WindowPolicy::stepBack(Application &application, const WindowGroup &group, int windowState) const
{
    Plan plan;
    if (group.windowState == windowState) {
        return plan;
    }
    leaveScreen(plan, application, group, windowState);
    const WindowGroup *inFront = application.fullScreenGroup();
    if (!inFront || inFront->id == group.id) {
        changeState(plan, application, NAVIGATOR_APP_BACKGROUND);
    }
    return plan;
}

Plan WindowPolicy::setActive(Application &application, const WindowGroup &group, bool active) const
{
    // No other group can have the focus: it is with a full-screen group, and this is the only one.
    if (group.active == active) {
        return {};
    }
    return {{&application, active ? activeEvent(group.id) : inactiveEvent(group.id)}};
}

} // namespace kelp::device
