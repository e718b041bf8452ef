// SPDX-License-Identifier: Apache-2.0
// The path of a publish/subscribe object as people give it.
#pragma once

#include <string>

namespace kelp::tool {

// The path below "/pps" that somebody has given with or without it: "/services/power/battery", "/" for the root.
// Throws Failure for one with options, which are not for people.
std::string objectPath(const std::string &given);

} // namespace kelp::tool
