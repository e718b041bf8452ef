// SPDX-License-Identifier: Apache-2.0
// kelp-device pps: looks at the device's publish/subscribe objects and changes them, with a verb for each below it.

#include "CommandOptions.h"
#include "Failure.h"
#include "PpsVerbs.h"

#include <algorithm>

namespace kelp::tool {

namespace {

struct VerbSpec {
    const char *name;
    const char *help;
    Action (*add)(const Command &verb, const DeviceOption &device);
};

constexpr VerbSpec VERBS[] = {
    {"ls", "List a directory of objects", addPpsList},
    {"get", "Print an object, or one of its attributes", addPpsGet},
    {"set", "Publish attributes; makes the object if there is none", addPpsSet},
    {"watch", "Print an object, or a directory of objects, and each change as it comes", addPpsWatch},
    {"rm", "Delete objects", addPpsRemove},
};

} // namespace

Action addPps(const Command &verb, const Invocation &)
{
    constexpr char DEVICE_HELP[] = "The device's directory";
    const auto device = std::make_shared<std::string>();
    addDeviceOption(verb, *device, DEVICE_HELP);
    std::vector<std::pair<Command, Action>> actions;
    for (const VerbSpec &spec : VERBS) {
        const Command below = verb.addCommand(spec.name, spec.help);
        addDeviceOption(below, *device, DEVICE_HELP);
        actions.emplace_back(below, spec.add(below, device));
    }
    return [actions = std::move(actions)] {
        const auto chosen = std::find_if(actions.begin(), actions.end(),
                                         [](const auto &action) { return action.first.isChosen(); });
        if (chosen == actions.end()) {
            throw Failure(EXIT_USAGE, "what to do? Give a verb, such as ls or get; kelp-device pps --help "
                                      "lists them");
        }
        return chosen->second();
    };
}

} // namespace kelp::tool
