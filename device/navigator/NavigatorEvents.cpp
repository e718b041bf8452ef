// SPDX-License-Identifier: Apache-2.0
// One function an event, and the words for their numbers. Called by whoever plans an event, and for the
// trace.
#include "NavigatorEvents.h"

#include "StateNames.h"

#include <navigator/navigator.h>

namespace kelp::device {

namespace {

link::Event bareEvent(int code)
{
    link::Event event;
    event.code = code;
    return event;
}

link::Event angleEvent(int code, const std::string &id, int angle)
{
    link::Event event = bareEvent(code);
    event.id = id;
    event.angle = angle;
    return event;
}

} // namespace

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
    return bareEvent(NAVIGATOR_EXIT);
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

link::Event orientationCheckEvent(const std::string &id, int angle)
{
    return angleEvent(NAVIGATOR_ORIENTATION_CHECK, id, angle);
}

link::Event orientationSizeEvent(const std::string &id, const ScreenSize &size)
{
    link::Event event = bareEvent(NAVIGATOR_ORIENTATION_SIZE);
    event.id = id;
    event.width = size.width;
    event.height = size.height;
    return event;
}

link::Event orientationEvent(const std::string &id, int angle)
{
    return angleEvent(NAVIGATOR_ORIENTATION, id, angle);
}

link::Event orientationDoneEvent(int angle)
{
    return angleEvent(NAVIGATOR_ORIENTATION_DONE, {}, angle);
}

link::Event swipeStartEvent()
{
    return bareEvent(NAVIGATOR_SWIPE_START);
}

link::Event swipeDownEvent()
{
    return bareEvent(NAVIGATOR_SWIPE_DOWN);
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
    case NAVIGATOR_ORIENTATION_CHECK:
        return "orientation-check " + event.id + ' ' + std::to_string(event.angle);
    case NAVIGATOR_ORIENTATION_SIZE:
        return "orientation-size " + event.id + ' ' + screenSizeText({event.width, event.height});
    case NAVIGATOR_ORIENTATION:
        return "orientation " + event.id + ' ' + std::to_string(event.angle);
    case NAVIGATOR_ORIENTATION_DONE:
        return "orientation-done " + std::to_string(event.angle);
    case NAVIGATOR_SWIPE_START:
        return "swipe-start";
    case NAVIGATOR_SWIPE_DOWN:
        return "swipe-down";
    default:
        return "event " + std::to_string(event.code);
    }
}

} // namespace kelp::device
