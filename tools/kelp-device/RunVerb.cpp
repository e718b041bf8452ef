// SPDX-License-Identifier: Apache-2.0
// kelp-device run: a device for one application, gone when that ends. What the application writes is all that appears
// on standard output, and its exit code is the command's.

#include "CommandOptions.h"
#include "DeviceLocation.h"
#include "Failure.h"
#include "ScenarioSession.h"
#include "Verb.h"
#include "device/Device.h"
#include "device/process/Terminal.h"

#include <memory>

namespace kelp::tool {

namespace {

constexpr char STANDARD_ERROR[] = "-";

struct RunOptions {
    SetUpOptions setUp;
    std::string trace; // a path, or STANDARD_ERROR; empty: none
    bool takesTerminal = false;
    std::string scenario; // a path; empty: none
    bool json = false;
};

device::DeviceDirectory claimDirectory(const std::string &option)
{
    return option.empty() ? device::DeviceDirectory::temporaryIn(privateParent())
                          : device::DeviceDirectory::at(absolutePath(option));
}

device::DeviceOptions deviceOptions(const RunOptions &options)
{
    device::DeviceOptions result = options.setUp.deviceOptions();
    if (!options.trace.empty()) {
        result.trace = traceTo(options.trace == STANDARD_ERROR ? "" : options.trace);
    }
    return result;
}

// Returns the application's exit code.
int runDevice(const RunOptions &options, const Invocation &invocation, ScenarioSession *session)
{
    device::Device device(claimDirectory(options.setUp.device), deviceOptions(options));
    device::Launch launch{invocation.application, {}, options.takesTerminal};
    if (!session) {
        device.launch(std::move(launch));
        return device.run();
    }
    const auto hold = session->begin(device, std::move(launch), options.setUp.settings().grace);
    return device.run();
}

int runApplication(const RunOptions &options, const Invocation &invocation)
{
    if (invocation.application.empty()) {
        throw Failure(EXIT_USAGE, "no application: give it behind --, as in kelp-device run -- APP [ARGS]");
    }
    if (options.takesTerminal && !device::Terminal::isThere()) {
        throw Failure(EXIT_SET_UP, "standard input is no terminal: leave --terminal out");
    }
    std::unique_ptr<ScenarioSession> session;
    if (!options.scenario.empty()) {
        session = std::make_unique<ScenarioSession>(options.scenario, options.json);
    }
    try {
        const int code = runDevice(options, invocation, session.get());
        return session ? session->finish(code) : code;
    } catch (const device::LaunchError &error) {
        throw Failure(error.exitCode(), error.what());
    } catch (const std::exception &error) {
        throw Failure(EXIT_SET_UP, error.what());
    }
}

} // namespace

Action addRun(const Command &verb, const Invocation &invocation)
{
    const auto options = std::make_shared<RunOptions>();
    // The application stands behind the options that the parser sees, and so in none of its usage lines.
    verb.setUsage("Usage: kelp-device run [OPTIONS] -- APP [ARGS]...\n");
    options->setUp.addTo(verb, "Put the device here, so that other commands can drive it");
    verb.add("--trace", options->trace, "Trace to standard error, or to FILE")
        .optionalValue(STANDARD_ERROR, "[=FILE]");
    verb.addFlag("--terminal", options->takesTerminal,
                 "Give the terminal to APP, Ctrl-C included: for debuggers");
    const Parameter scenario =
        verb.add("--scenario", options->scenario, "Carry out the steps in FILE").typeName("FILE");
    verb.addFlag("--json", options->json, "Report the scenario's steps as JSON, one object a line")
        .needs(scenario);
    verb.setFooter(
        stepHelp() +
        "\n\n"
        "With a scenario, the exit code is 0 when every step held, 1 when one did not, 4 when a signal ended "
        "APP,\n"
        "124 when a step timed out.\n\n"
        "Exit code: APP's own, or 128 and the signal that ended it; 125 when the device cannot be set up,\n"
        "126 when APP cannot be run, 127 when there is no APP.");
    return [options, &invocation] {
        return runApplication(*options, invocation);
    };
}

} // namespace kelp::tool
