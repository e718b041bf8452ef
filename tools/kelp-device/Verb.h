// SPDX-License-Identifier: Apache-2.0
// The verbs of the command line. Each stands in a file of its own, which declares its options and returns what is to
// be done once they are parsed; main.cpp holds the one list of them.
#pragma once

#include "CommandLine.h"

#include <functional>
#include <string>
#include <vector>

namespace kelp::tool {

// What main() has found out before the options are parsed.
struct Invocation {
    bool hasSeparator = false;            // "--" was given
    std::vector<std::string> application; // what stands behind it
};

// Does the verb's work and returns the exit code. Throws Failure.
using Action = std::function<int()>;

Action addEvent(const Command &verb, const Invocation &invocation);
Action addFail(const Command &verb, const Invocation &invocation);
Action addPps(const Command &verb, const Invocation &invocation);
Action addRun(const Command &verb, const Invocation &invocation);
Action addStart(const Command &verb, const Invocation &invocation);
Action addState(const Command &verb, const Invocation &invocation);
Action addStatus(const Command &verb, const Invocation &invocation);
Action addStop(const Command &verb, const Invocation &invocation);
Action addWait(const Command &verb, const Invocation &invocation);

} // namespace kelp::tool
