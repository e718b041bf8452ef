// SPDX-License-Identifier: Apache-2.0
// Whether a condition holds, by what the device publishes, and what there is instead. Pure.
#pragma once

#include "Condition.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace kelp::tool {

// The attributes of objects, by their paths below "/pps".
using Objects = std::map<std::string, nlohmann::ordered_json>;

struct Verdict {
    bool holds = false;
    std::string seen; // in place of it, for people; empty where it holds
};

// objects holds those below the condition's directory. Of an object that an application serves nothing is published.
Verdict judge(const Condition &condition, const Objects &objects);

} // namespace kelp::tool
