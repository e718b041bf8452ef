// SPDX-License-Identifier: Apache-2.0
// One window group of an application, as the application has been told.
#pragma once

#include <navigator/navigator.h>

#include <string>

namespace kelp::device {

struct WindowGroup {
    std::string id;                               // unique on the device
    int windowState = NAVIGATOR_WINDOW_INVISIBLE; // enum navigator_window_state
    bool active = false;                          // has the input focus; only while full screen

    bool isFullScreen() const { return windowState == NAVIGATOR_WINDOW_FULLSCREEN; }
};

} // namespace kelp::device
