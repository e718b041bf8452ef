// SPDX-License-Identifier: Apache-2.0
// kelp-device status: whether a device runs, and where.

#include "CommandOptions.h"
#include "DeviceClient.h"
#include "DeviceLocation.h"
#include "Failure.h"
#include "StateTable.h"
#include "Verb.h"

#include <iostream>
#include <memory>

namespace kelp::tool {

Action addStatus(const Command &verb, const Invocation &)
{
    struct Options {
        std::string device;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    addDeviceOption(verb, options->device, "The device's directory");
    verb.addFlag("--json", options->json, "As JSON");
    return [options] {
        DeviceClient client(deviceDirectory(options->device));
        const std::string report = client.ask("status");
        std::cout << (options->json ? report : statusText(report));
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
