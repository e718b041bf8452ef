// SPDX-License-Identifier: Apache-2.0
// The check of an event's arguments before any device is asked, by the rules that the device has. For the verb event
// and for scenarios.
#pragma once

#include "device/navigator/EventArguments.h"

namespace kelp::tool {

// Throws Failure, EXIT_USAGE, with what is wrong about them.
void checkEvent(const device::EventSpec &event, const device::ArgumentTexts &arguments);

} // namespace kelp::tool
