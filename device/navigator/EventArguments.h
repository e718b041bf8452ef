// SPDX-License-Identifier: Apache-2.0
// The gate for what a person or a test causes: turns named texts into checked values, by the catalogue's
// table.
#pragma once

#include "Navigator.h"
#include "Screen.h"
#include "device/catalogue/Catalogue.h"

#include <variant>

namespace kelp::device {

using ArgumentTexts = std::vector<std::pair<std::string, std::string>>;

struct EventArguments {
    std::optional<std::string> app;      // an application's id
    std::optional<std::string> group;    // a window group's id
    std::optional<std::string> newGroup; // the id for a group that is to be opened
    int severity = 0;                    // enum navigator_severity
    int angle = 0;                       // of the screen
    ScreenSize size;
    std::string theme;
};

// The values, or the reason why an argument is unknown, repeated, malformed or missing.
std::variant<EventArguments, Outcome> checkArguments(const EventSpec &event, const ArgumentTexts &texts);

} // namespace kelp::device
