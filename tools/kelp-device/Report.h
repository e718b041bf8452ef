// SPDX-License-Identifier: Apache-2.0
// The device's reports, which are JSON, one object a line.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>

namespace kelp::tool {

// Calls with each line's object. Throws Failure for what is no such report, also where use() misses something in it.
void forEachObject(const std::string &report, const std::function<void(const nlohmann::json &)> &use);

} // namespace kelp::tool
