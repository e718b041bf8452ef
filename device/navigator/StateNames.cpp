// SPDX-License-Identifier: Apache-2.0
// See StateNames.h.

#include "StateNames.h"

#include <navigator/navigator.h>

namespace kelp::device {

const char *appStateName(int appState)
{
    switch (appState) {
    case NAVIGATOR_APP_FOREGROUND:
        return "foreground";
    case NAVIGATOR_APP_BACKGROUND:
        return "background";
    default:
        return "stopping";
    }
}

const char *windowStateName(int windowState)
{
    switch (windowState) {
    case NAVIGATOR_WINDOW_FULLSCREEN:
        return "fullscreen";
    case NAVIGATOR_WINDOW_THUMBNAIL:
        return "thumbnail";
    default:
        return "invisible";
    }
}

const char *badgeName(bool hasBadge)
{
    return hasBadge ? "splat" : "none";
}

const char *memorySeverityName(int severity)
{
    switch (severity) {
    case NAVIGATOR_MEMORY_CLEAR:
        return "clear";
    case NAVIGATOR_MEMORY_LOW:
        return "low";
    default:
        return "critical";
    }
}

const char *rotationPhaseName(bool isTurning)
{
    return isTurning ? "turning" : "checking";
}

} // namespace kelp::device
