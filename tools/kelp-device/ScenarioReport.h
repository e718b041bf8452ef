// SPDX-License-Identifier: Apache-2.0
// Tells on standard error how a scenario went, one line a step, for people or as JSON.
#pragma once

#include "Scenario.h"

namespace kelp::tool {

struct StepResult {
    enum class Kind { Held, Failed, TimedOut };
    Kind kind = Kind::Held;
    std::string seen; // in place of what was expected; empty where it held
    double seconds = 0;
};

class ScenarioReport
{
public:
    explicit ScenarioReport(bool json) : _json(json) {}

    void step(const Scenario &scenario, const Step &step, const StepResult &result) const;

    // How the application ended, with what is wrong about it or nothing. launches: how many applications there were;
    // with 0 the program never became one.
    void end(int exitCode, std::size_t launches, const std::string &complaint) const;

private:
    bool _json;
};

} // namespace kelp::tool
