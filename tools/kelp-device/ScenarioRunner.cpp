// SPDX-License-Identifier: Apache-2.0
// See ScenarioRunner.h.

#include "ScenarioRunner.h"

#include "Failure.h"
#include "ObjectView.h"
#include "Report.h"

#include <nlohmann/json.hpp>

#include <fcntl.h>

namespace kelp::tool {

namespace {

using Kind = StepResult::Kind;

std::chrono::milliseconds wholeMilliseconds(double seconds)
{
    return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
}

} // namespace

ScenarioRunner::ScenarioRunner(const std::string &directory, device::Duration grace, const Scenario &scenario,
                               const ScenarioReport &report, std::function<void()> start)
    : _grace(grace),
      _scenario(scenario),
      _report(report),
      _start(std::move(start)),
      _client(directory)
{}

int ScenarioRunner::run()
{
    if (!_scenario.hasStart()) {
        _start();
    }
    int exitCode = EXIT_HELD;
    for (auto step = _scenario.steps.begin(); exitCode == EXIT_HELD && step != _scenario.steps.end();
         ++step) {
        const StepResult result = carryOut(*step);
        _report.step(_scenario, *step, result);
        if (result.kind != Kind::Held) {
            exitCode = result.kind == Kind::TimedOut ? EXIT_TIME_OUT : EXIT_REFUSED;
        }
    }
    if (exitCode != EXIT_HELD || !_scenario.hasEnd()) {
        endApplication();
    }
    return exitCode;
}

StepResult ScenarioRunner::carryOut(const Step &step)
{
    const auto begin = std::chrono::steady_clock::now();
    StepResult result = attempt(step);
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return result;
}

StepResult ScenarioRunner::attempt(const Step &step)
{
    try {
        return std::visit([this](const auto &what) { return perform(what); }, step.what);
    } catch (const Failure &failure) {
        switch (failure.exitCode()) {
        case EXIT_NO_DEVICE: // it goes with its application
            return {Kind::Failed, "the application has ended", 0};
        case EXIT_TIME_OUT:
            return {Kind::TimedOut, failure.what(), 0};
        default:
            return {Kind::Failed, failure.what(), 0};
        }
    }
}

StepResult ScenarioRunner::perform(const CommandStep &step)
{
    (void)_client.ask(step.verb, step.arguments); // what it says besides is for people
    return {};
}

StepResult ScenarioRunner::perform(const ConditionStep &step)
{
    const Verdict verdict =
        awaitCondition(step.condition, std::chrono::duration<double>(step.timeoutSeconds));
    if (verdict.holds) {
        return {};
    }
    return {step.isWait ? Kind::TimedOut : Kind::Failed, verdict.seen, 0};
}

StepResult ScenarioRunner::perform(const SetStep &step)
{
    ObjectFile object(step.path, O_WRONLY | O_CREAT);
    if (!step.lines.empty()) {
        object.write(step.lines);
    }
    return {};
}

StepResult ScenarioRunner::perform(const StartStep &)
{
    _start();
    return {};
}

StepResult ScenarioRunner::perform(const EndStep &step)
{
    if (_client.endsWithin(wholeMilliseconds(step.timeoutSeconds))) {
        return {};
    }
    return {Kind::TimedOut, "the application has not ended", 0};
}

// Whether there were applications and each has gone or is stopping, so that the device will end without further ado.
// The device counts them: of one that came and went between two looks, its objects tell nothing.
bool ScenarioRunner::leavesByItself()
{
    bool hasLaunched = false;
    bool isStaying = false;
    forEachObject(_client.ask("state"), [&](const nlohmann::json &object) {
        if (object.at("type") == "application") {
            isStaying = isStaying || object.at("processState") != "stopping";
        } else {
            hasLaunched = object.at("launches") != 0;
        }
    });
    return hasLaunched && !isStaying;
}

void ScenarioRunner::endApplication()
{
    try {
        // Asked to stop once more, the device would not wait for what is leaving.
        if (leavesByItself() && _client.endsWithin(std::chrono::ceil<std::chrono::milliseconds>(_grace))) {
            return;
        }
        (void)_client.ask("stop"); // its answer has no text
        _hasStopped = true;
    } catch (const Failure &failure) {
        if (failure.exitCode() != EXIT_NO_DEVICE) {
            throw;
        }
        // The device has gone: so has the application.
    }
}

} // namespace kelp::tool
