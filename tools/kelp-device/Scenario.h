// SPDX-License-Identifier: Apache-2.0
// A scenario: steps to carry out on a device, one a line, each spelt as the command line spells it. Read as a whole
// before any of it is carried out. Pure.
//
//     set /services/power/battery level=80
//     start                                     # the application; without this step, before the first
//     wait windowState=fullscreen active=true   # with --timeout SECONDS; 10 without
//     fail set-badge EIO --times 1
//     send low-memory 1
//     set /services/power/battery level=5
//     expect request set-badge
//     ends 0                                    # at the end: the application ends by itself, with this code
#pragma once

#include "Condition.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kelp::tool {

// What is asked of the device: an event or a failure.
struct CommandStep {
    std::string verb;
    std::vector<std::pair<std::string, std::string>> arguments;
};
struct ConditionStep {
    Condition condition;
    double timeoutSeconds = 0;
    bool isWait = false; // what does not hold in time has timed out; else it has failed
};
struct SetStep {
    std::string path; // below "/pps"
    std::string lines;
};
struct StartStep {
}; // of the application; without one, it starts before the first step
struct EndStep {
    int exitCode = 0; // of the application
    double timeoutSeconds = 0;
};

struct Step {
    unsigned line = 0; // in the file, from 1
    std::string text;  // as it stands there, without comment
    std::variant<CommandStep, ConditionStep, SetStep, StartStep, EndStep> what;
};

struct Scenario {
    std::string name; // the file's
    std::vector<Step> steps;

    // Where a step stands: "lifecycle.scenario:7".
    std::string place(const Step &step) const { return name + ':' + std::to_string(step.line); }

    bool hasStart() const;
    bool hasEnd() const; // the application is to end by itself
};

// Throws Failure, EXIT_USAGE, with a sentence for each line that is no step.
Scenario parseScenario(const std::string &name, std::string_view text);

// What parseScenario() takes, as lines for people.
std::string stepHelp();

} // namespace kelp::tool
