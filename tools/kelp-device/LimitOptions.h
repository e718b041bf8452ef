// SPDX-License-Identifier: Apache-2.0
// The bounds on what clients may take up of a device, as --limit NAME=N sets them: one table of their names.
#pragma once

#include "device/Device.h"

#include <string>
#include <vector>

namespace kelp::tool {

// What is wrong with the text of a limit; nothing if it is right.
std::string checkLimit(const std::string &setting);

// Settings that checkLimit() has passed; of two of one name the later holds.
void applyLimits(const std::vector<std::string> &settings, device::DeviceOptions &options);

// The names, for the help.
std::string limitNames();

} // namespace kelp::tool
