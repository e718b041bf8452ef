// SPDX-License-Identifier: Apache-2.0
// See ScenarioReport.h.

#include "ScenarioReport.h"

#include "TextTable.h"

#include <nlohmann/json.hpp>

#include <iomanip>
#include <iostream>
#include <sstream>

namespace kelp::tool {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char *RESULTS[] = {"held", "failed", "timed out"}; // by StepResult::Kind

// At once and whole: the device's thread traces to the same place.
void print(const std::string &line)
{
    std::cerr << line + '\n';
}

void print(const Json &line)
{
    print(line.dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace

void ScenarioReport::step(const Scenario &scenario, const Step &step, const StepResult &result) const
{
    const char *name = RESULTS[static_cast<int>(result.kind)];
    if (_json) {
        return print(Json{{"type", "step"},
                          {"file", scenario.name},
                          {"line", step.line},
                          {"step", step.text},
                          {"result", name},
                          {"seen", result.seen},
                          {"seconds", result.seconds}});
    }
    std::ostringstream line;
    line << std::left << std::setw(9) << name << std::right << std::fixed << std::setprecision(3)
         << std::setw(8) << result.seconds << " s  " << scenario.place(step) << ": " << printable(step.text)
         << (result.seen.empty() ? "" : ": ") << printable(result.seen);
    print(line.str());
}

void ScenarioReport::end(int exitCode, std::size_t launches, const std::string &complaint) const
{
    if (_json) {
        return print(
            Json{{"type", "end"}, {"exitCode", exitCode}, {"launches", launches}, {"complaint", complaint}});
    }
    std::string sentence = complaint;
    if (launches == 0) {
        sentence += (sentence.empty() ? "" : "; ") + std::string("the program never became an application");
    }
    if (!sentence.empty()) {
        print("kelp-device: " + sentence);
    }
}

} // namespace kelp::tool
