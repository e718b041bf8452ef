// SPDX-License-Identifier: Apache-2.0
// kelp-device stop: ends a device and waits until it has ended.

#include "CommandOptions.h"
#include "DeviceClient.h"
#include "DeviceLocation.h"
#include "Failure.h"
#include "Verb.h"

#include <memory>

namespace kelp::tool {

Action addStop(const Command &verb, const Invocation &)
{
    struct Options {
        std::string device;
        double timeoutSeconds = 60;
    };
    const auto options = std::make_shared<Options>();
    addDeviceOption(verb, options->device, "The device's directory");
    addSecondsOption(verb, "--timeout", options->timeoutSeconds, "How long to wait for the end");
    verb.setFooter(
        "Its applications are asked to exit and have their grace. Stopped once more meanwhile, the device "
        "ends them at once.");
    return [options] {
        const std::chrono::duration<double> timeout(options->timeoutSeconds);
        DeviceClient client(deviceDirectory(options->device));
        (void)client.ask("stop"); // its answer has no text
        client.awaitEnd(std::chrono::ceil<std::chrono::milliseconds>(timeout));
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
