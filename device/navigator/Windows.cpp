// SPDX-License-Identifier: Apache-2.0
// Refusals first, then the policy's plan, then its delivery. A group is added just before the events that
// tell of it, and removed just after.
#include "Windows.h"

#include "NavigatorEvents.h"

#include <cerrno>

namespace kelp::device {

namespace {

// The most window groups of one application: a new channel is told the state of each.
constexpr std::size_t MAX_GROUPS = 32;

Outcome refuseStopping(const Application &application)
{
    if (application.isStopping()) {
        return {EPERM, application.id() + " is stopping: its windows stay as they are until it has ended"};
    }
    return {};
}

std::string stateText(int windowState)
{
    return windowState == NAVIGATOR_WINDOW_THUMBNAIL ? "a thumbnail" : "invisible";
}

} // namespace

void Windows::launch(Application &application)
{
    _applications.launch(application);
    const WindowGroup &group = application.groups().front();
    _journal.note(application, "launched with window group " + group.id);
    _delivery.deliverWhatFits(_policy.bringToFront(application, group));
}

void Windows::tellState(const Application &application, ChannelId channel)
{
    _delivery.tell(channel, application, appStateEvent(application.state()));
    for (const WindowGroup &group : application.groups()) {
        _delivery.tell(channel, application, windowStateEvent(group.id, group.windowState));
        _delivery.tell(channel, application, group.active ? activeEvent(group.id) : inactiveEvent(group.id));
    }
}

Outcome Windows::move(const Plan &plan, const std::string &unchanged)
{
    if (plan.empty()) {
        return {0, "nothing changes: " + unchanged};
    }
    return _delivery.deliver(plan);
}

Outcome Windows::bringToFront(Application &application, const WindowGroup &group)
{
    if (Outcome refusal = refuseStopping(application); refusal.error != 0) {
        return refusal;
    }
    return move(_policy.bringToFront(application, group), group.id + " is full screen and active already");
}

Outcome Windows::stepBack(Application &application, const WindowGroup &group, int windowState)
{
    if (Outcome refusal = refuseStopping(application); refusal.error != 0) {
        return refusal;
    }
    return move(_policy.stepBack(application, group, windowState),
                group.id + " is " + stateText(windowState) + " already");
}

Outcome Windows::setActive(Application &application, const WindowGroup &group, bool active)
{
    if (Outcome refusal = refuseStopping(application); refusal.error != 0) {
        return refusal;
    }
    if (!group.isFullScreen()) {
        return {EPERM,
                group.id + " is not full screen and has no focus: bring it to the front with fullscreen"};
    }
    return move(_policy.setActive(application, group, active),
                group.id + " is " + (active ? "active" : "inactive") + " already");
}

Outcome Windows::checkOpening(const Application &application, const std::optional<std::string> &id) const
{
    if (application.isStopping()) {
        return refuseStopping(application);
    }
    if (application.groups().size() >= MAX_GROUPS) {
        return {EMFILE, application.id() + " has " + std::to_string(MAX_GROUPS) +
                            " window groups, the most: close one with close-group"};
    }
    if (const Application *owner = id ? _applications.ownerOf(*id) : nullptr) {
        return {EEXIST, "the window group " + *id + " is open in " + owner->id() + ": choose another id"};
    }
    return {};
}

Outcome Windows::open(Application &application, const std::optional<std::string> &id)
{
    if (Outcome refusal = checkOpening(application, id); refusal.error != 0) {
        return refusal;
    }
    const unsigned number = _applications.freeGroupNumber(application);
    const WindowGroup group = {id ? *id : application.groupId(number)};
    const Plan plan = _policy.bringToFront(application, group);
    if (Outcome room = _delivery.roomFor(plan); room.error != 0) {
        return room;
    }
    if (!id) {
        application.useGroupNumber(number);
    }
    application.addGroup(group.id);
    _delivery.deliverWhatFits(plan);
    return {0, group.id};
}

Outcome Windows::close(Application &application, const WindowGroup &group)
{
    if (Outcome refusal = refuseStopping(application); refusal.error != 0) {
        return refusal;
    }
    if (application.groups().size() == 1) {
        return {EPERM, group.id + " is the last window group of " + application.id() + ": use close"};
    }
    const std::string id = group.id;
    Outcome hidden = _delivery.deliver(_policy.stepBack(application, group, NAVIGATOR_WINDOW_INVISIBLE));
    if (hidden.error == 0) {
        application.removeGroup(id);
        _journal.note(application, "closed window group " + id);
    }
    return hidden;
}

} // namespace kelp::device
