// SPDX-License-Identifier: Apache-2.0
// Error numbers as people write them.
#pragma once

#include <optional>
#include <string>

namespace kelp::tool {

// The number of an errno that is given by its name, such as EPERM, or as a number; 0 for "0".
std::optional<int> errorNumber(const std::string &text);

} // namespace kelp::tool
