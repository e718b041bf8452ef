// SPDX-License-Identifier: Apache-2.0
// Carries out a scenario's steps on the device in use, as a client like any other, until one does not hold; then has
// the application end.
#pragma once

#include "DeviceClient.h"
#include "ScenarioReport.h"
#include "device/clock/Clock.h"

#include <functional>

namespace kelp::tool {

class ScenarioRunner
{
public:
    // directory is the device's, grace the time that an application has to exit; start() starts the
    // application and ends with an exception where it cannot, which run() lets through. Throws Failure.
    ScenarioRunner(const std::string &directory, device::Duration grace, const Scenario &scenario,
                   const ScenarioReport &report, std::function<void()> start);

    // Starts the application, where no step does. Returns how the steps went: EXIT_HELD, EXIT_REFUSED or EXIT_TIME_OUT.
    int run();

    // Whether it had the device stop, which ends by a signal what never was an application of the navigator.
    bool hasStopped() const { return _hasStopped; }

private:
    StepResult carryOut(const Step &step);
    StepResult attempt(const Step &step);
    StepResult perform(const CommandStep &step);
    StepResult perform(const ConditionStep &step);
    StepResult perform(const SetStep &step);
    StepResult perform(const StartStep &);
    StepResult perform(const EndStep &step);
    void endApplication();
    bool leavesByItself();

    device::Duration _grace;
    const Scenario &_scenario;
    const ScenarioReport &_report;
    std::function<void()> _start;
    DeviceClient _client;
    bool _hasStopped = false;
};

} // namespace kelp::tool
