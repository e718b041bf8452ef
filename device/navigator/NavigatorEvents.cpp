// SPDX-License-Identifier: Apache-2.0
// One function an event, and the words for their numbers. Called by whoever plans an event, and for the
// trace.
#include "NavigatorEvents.h"

#include "StateNames.h"

#include <navigator/navigator.h>

namespace kelp::device {

link::Event appStateEvent(int appState)
{
    link::Event event;
    event.code = NAVIGATOR_APP_STATE;
    event.appState = appState;
    return event;
}

link::Event windowStateEvent(const std::string &groupId, int windowState)
{
    link::Event event;
    event.code = NAVIGATOR_WINDOW_STATE;
    event.windowState = windowState;
    event.groupId = groupId;
    return event;
}

link::Event activeEvent(const std::string &groupId)
{
    link::Event event;
    event.code = NAVIGATOR_WINDOW_ACTIVE;
    event.groupId = groupId;
    return event;
}

link::Event inactiveEvent(const std::string &groupId)
{
    link::Event event;
    event.code = NAVIGATOR_WINDOW_INACTIVE;
    event.groupId = groupId;
    return event;
}

link::Event exitEvent()
{
    link::Event event;
    event.code = NAVIGATOR_EXIT;
    return event;
}

link::Event lowMemoryEvent(int severity)
{
    link::Event event;
    event.code = NAVIGATOR_LOW_MEMORY;
    event.severity = severity;
    return event;
}

link::Event pooledEvent(const std::string &id)
{
    link::Event event;
    event.code = NAVIGATOR_POOLED;
    event.id = id;
    return event;
}

std::string describe(const link::Event &event)
{
    switch (event.code) {
    case NAVIGATOR_APP_STATE:
        return std::string("app-state ") + appStateName(event.appState);
    case NAVIGATOR_WINDOW_STATE:
        return std::string("window-state ") + windowStateName(event.windowState) + ' ' + event.groupId;
    case NAVIGATOR_WINDOW_ACTIVE:
        return "window-active " + event.groupId;
    case NAVIGATOR_WINDOW_INACTIVE:
        return "window-inactive " + event.groupId;
    case NAVIGATOR_EXIT:
        return "exit";
    case NAVIGATOR_LOW_MEMORY:
        return "low-memory " + std::to_string(event.severity);
    case NAVIGATOR_POOLED:
        return "pooled " + event.id;
    default:
        return "event " + std::to_string(event.code);
    }
}

} // namespace kelp::device
