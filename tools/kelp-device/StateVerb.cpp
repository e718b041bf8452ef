// SPDX-License-Identifier: Apache-2.0
// kelp-device state: the applications with their windows, prompts and deadlines.

#include "CommandOptions.h"
#include "DeviceClient.h"
#include "DeviceLocation.h"
#include "Failure.h"
#include "StateTable.h"
#include "Verb.h"

#include <iostream>
#include <memory>

namespace kelp::tool {

Action addState(const Command &verb, const Invocation &)
{
    struct Options {
        std::string device;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    addDeviceOption(verb, options->device, "The device's directory");
    verb.addFlag("--json", options->json, "As JSON, one object a line: the device, then each application");
    return [options] {
        DeviceClient client(deviceDirectory(options->device));
        const std::string report = client.ask("state");
        std::cout << (options->json ? report : stateTable(report));
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
