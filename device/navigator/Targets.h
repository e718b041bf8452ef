// SPDX-License-Identifier: Apache-2.0
// Which application and which window group a command is for.
#pragma once

#include "Applications.h"
#include "EventArguments.h"

namespace kelp::device {

struct Target {
    Application *application;
    const WindowGroup *group; // the one that was named, else the main one
};

// The application that is named, or that has the group that is named, or the only one; else the reason why
// there is no choosing, with what there is to choose from.
std::variant<Target, Outcome> chooseTarget(const Applications &applications, const EventArguments &arguments);

// Why nothing can be chosen where no application runs; success where one does.
Outcome requireApplication(const Applications &applications);

} // namespace kelp::device
