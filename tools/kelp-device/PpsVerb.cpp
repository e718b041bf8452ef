// SPDX-License-Identifier: Apache-2.0
// kelp-device pps: looks at the device's publish/subscribe objects and changes them, with a verb for each below it.

#include "CommandOptions.h"
#include "Failure.h"
#include "PpsVerbs.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace kelp::tool {

namespace {

struct VerbSpec {
    const char *name;
    const char *help;
    Action (*add)(CLI::App &verb, const DeviceOption &device);
};

constexpr VerbSpec VERBS[] = {
    {"ls", "List a directory of objects", addPpsList},
    {"get", "Print an object, or one of its attributes", addPpsGet},
    {"set", "Publish attributes; makes the object if there is none", addPpsSet},
    {"watch", "Print an object, or a directory of objects, and each change as it comes", addPpsWatch},
    {"rm", "Delete objects", addPpsRemove},
};

} // namespace

Action addPps(CLI::App &verb, const Invocation &)
{
    constexpr char DEVICE_HELP[] = "The device's directory";
    const auto device = std::make_shared<std::string>();
    verb.require_subcommand(0, 1);
    addDeviceOption(verb, *device, DEVICE_HELP);
    std::vector<std::pair<CLI::App *, Action>> actions;
    for (const VerbSpec &spec : VERBS) {
        CLI::App *below = verb.add_subcommand(spec.name, spec.help);
        addDeviceOption(*below, *device, DEVICE_HELP);
        actions.emplace_back(below, spec.add(*below, device));
    }
    return [actions = std::move(actions)] {
        const auto chosen = std::find_if(actions.begin(), actions.end(),
                                         [](const auto &action) { return action.first->parsed(); });
        if (chosen == actions.end()) {
            throw Failure(EXIT_USAGE, "what to do? Give a verb, such as ls or get; kelp-device pps --help "
                                      "lists them");
        }
        return chosen->second();
    };
}

} // namespace kelp::tool
