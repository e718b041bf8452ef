// SPDX-License-Identifier: Apache-2.0
// What can be waited for and expected of a device, as the command line and scenarios say it. Whether it holds is told
// by the objects that the device publishes; see Verdict.h.
#pragma once

#include "Words.h"

#include <string>
#include <utility>
#include <vector>

namespace kelp::tool {

struct Condition {
    enum class Kind {
        State,    // an application's state has these values
        Gone,     // there is no such application
        Request,  // applications have made a request as often
        Refused,  // and were refused as often
        Object,   // there is such an object, with these values
        NoObject, // there is none
    };
    using Value = std::pair<std::string, std::string>; // a name, and what it is to be

    Kind kind = Kind::State;
    std::string application; // of State and Gone: its id; empty: the only one, or any
    std::string
        subject; // of Request and Refused: the request's name; of Object and NoObject: the path below "/pps"
    unsigned count = 1;        // of Request and Refused: at least
    std::vector<Value> values; // of State and Object
    std::string text;          // as it was given, for reports

    // The directory below which the objects lie that tell whether it holds; empty: all directories.
    std::string directory() const;
};

// Reads a condition from all its words, its options included. Throws Failure, EXIT_USAGE.
Condition parseCondition(Words words);

// What parseCondition() takes, as lines for people.
std::string conditionHelp();

} // namespace kelp::tool
