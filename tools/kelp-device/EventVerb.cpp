// SPDX-License-Identifier: Apache-2.0
// kelp-device event: each event of the catalogue is a verb below it, with the catalogue's arguments.

#include "CommandOptions.h"
#include "DeviceClient.h"
#include "DeviceLocation.h"
#include "EventCheck.h"
#include "Failure.h"
#include "Verb.h"
#include "device/catalogue/Catalogue.h"

#include <iostream>
#include <list>
#include <memory>

namespace kelp::tool {

namespace {

struct EventArgument {
    const device::ArgumentSpec *spec;
    std::optional<Parameter> parameter;
    std::string value;
};

struct EventOptions {
    std::string device;
    std::list<EventArgument> arguments; // of all events; the parser keeps pointers to them
};

void addEventArgument(const Command &event, const device::ArgumentSpec &spec, EventOptions &options)
{
    EventArgument &argument = options.arguments.emplace_back(EventArgument{&spec, {}, {}});
    const std::string flag = "--" + std::string(spec.name);
    const std::string names = spec.required ? std::string(spec.name) + ',' + flag : flag;
    argument.parameter = event.add(names, argument.value, std::string(spec.help));
    argument.parameter->typeName(std::string(spec.metavar)).required(spec.required);
}

int causeEvent(const Command &verb, const EventOptions &options)
{
    const auto event = verb.chosenBelow();
    if (!event) {
        throw Failure(EXIT_USAGE, "which event? kelp-device event --help lists them");
    }
    DeviceClient::Arguments arguments;
    for (const EventArgument &argument : options.arguments) {
        if (argument.parameter->isGiven()) {
            arguments.emplace_back(argument.spec->name, argument.value);
        }
    }
    checkEvent(*device::findEvent(event->name()), arguments);
    arguments.emplace(arguments.begin(), "name", event->name());
    DeviceClient client(deviceDirectory(options.device));
    const std::string text = client.ask("event", std::move(arguments));
    std::cout << text << (text.empty() ? "" : "\n");
    return EXIT_HELD;
}

} // namespace

Action addEvent(const Command &verb, const Invocation &)
{
    const auto options = std::make_shared<EventOptions>();
    addDeviceOption(verb, options->device, "The device's directory");
    for (const device::EventSpec &spec : device::events()) {
        const Command event = verb.addCommand(std::string(spec.name), std::string(spec.help));
        addDeviceOption(event, options->device, "The device's directory");
        for (const device::ArgumentSpec &argument : spec.arguments) {
            addEventArgument(event, argument, *options);
        }
    }
    return [options, verb] {
        return causeEvent(verb, *options);
    };
}

} // namespace kelp::tool
