// SPDX-License-Identifier: Apache-2.0
// The verbs below kelp-device pps. Each declares its options and returns what is to be done once they are parsed;
// PpsVerb.cpp holds the one list of them.
#pragma once

#include "Verb.h"

#include <memory>
#include <string>

namespace kelp::tool {

// What --device says, before the verb or behind it.
using DeviceOption = std::shared_ptr<const std::string>;

Action addPpsGet(const Command &verb, const DeviceOption &device);
Action addPpsList(const Command &verb, const DeviceOption &device);
Action addPpsRemove(const Command &verb, const DeviceOption &device);
Action addPpsSet(const Command &verb, const DeviceOption &device);
Action addPpsWatch(const Command &verb, const DeviceOption &device);

} // namespace kelp::tool
