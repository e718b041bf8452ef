// SPDX-License-Identifier: Apache-2.0
// Attributes as people type them, turned into the lines of a PPS text.
#pragma once

#include <string>

namespace kelp::tool {

// The line that sets what an argument says: NAME=VALUE, where true and false, numbers, and arrays and objects of JSON
// are what they look like and all else is a string, or NAME:ENCODING:VALUE as it is. Throws Failure, EXIT_USAGE.
std::string settingLine(const std::string &argument);

// The line that deletes an attribute. Throws Failure, EXIT_USAGE.
std::string deletingLine(const std::string &name);

} // namespace kelp::tool
