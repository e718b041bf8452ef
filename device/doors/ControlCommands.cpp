// SPDX-License-Identifier: Apache-2.0
// See ControlCommands.h.

#include "ControlCommands.h"

#include "device/catalogue/Catalogue.h"
#include "platform/link/Limits.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>

namespace kelp::device {

using link::Command;

namespace {

constexpr unsigned MAX_ERRNO = 4095;      // the kernel's own bound
constexpr unsigned MAX_TIMES = 1'000'000; // more can only be meant as "always"

std::optional<std::string_view> argument(const Command &command, std::string_view name)
{
    const auto found = std::find_if(command.arguments.begin(), command.arguments.end(),
                                    [name](const auto &one) { return one.first == name; });
    return found == command.arguments.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

std::optional<unsigned> number(std::string_view text, unsigned most)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber && value <= most ? std::optional<unsigned>(value) : std::nullopt;
}

} // namespace

struct ControlCommands::Verb {
    std::string_view name;
    std::string_view arguments; // for whoever gets them wrong
    std::size_t mostArguments;
    Outcome (ControlCommands::*run)(const Command &) const;
};

constinit const ControlCommands::Verb ControlCommands::VERBS[] = {
    {"event", "name=EVENT and the event's own arguments", link::MAX_ARGUMENTS, &ControlCommands::event},
    {"fail", "request=NAME errno=NUMBER [times=NUMBER]", 3, &ControlCommands::fail},
    {"objects", "path=PATH", 1, &ControlCommands::objects},
    {"state", "none", 0, &ControlCommands::state},
    {"status", "none", 0, &ControlCommands::status},
    {"stop", "none", 0, &ControlCommands::stop},
};

ControlCommands::ControlCommands(Navigator &navigator, Device device)
    : _navigator(navigator),
      _device(std::move(device))
{}

Outcome ControlCommands::run(const Command &command) const
{
    std::string known;
    for (const Verb &verb : VERBS) {
        if (verb.name != command.name) {
            known += (known.empty() ? "" : ", ") + std::string(verb.name);
            continue;
        }
        if (command.arguments.size() > verb.mostArguments) {
            return {EINVAL, command.name + " has other arguments: " + std::string(verb.arguments)};
        }
        return (this->*verb.run)(command);
    }
    return {EINVAL, "there is no command \"" + command.name + "\": use one of " + known};
}

Outcome ControlCommands::event(const Command &command) const
{
    if (command.arguments.empty() || command.arguments.front().first != "name") {
        return {EINVAL, "which event? Give its name as the first argument"};
    }
    const std::string &name = command.arguments.front().second;
    return _navigator.event(name, {command.arguments.begin() + 1, command.arguments.end()});
}

Outcome ControlCommands::fail(const Command &command) const
{
    const RequestSpec *request = findRequest(argument(command, "request").value_or(""));
    if (!request) {
        std::string known;
        for (const RequestSpec &spec : requests()) {
            known += (known.empty() ? "" : ", ") + std::string(spec.name);
        }
        return {EINVAL, "there is no such request: use one of " + known};
    }
    const auto error = number(argument(command, "errno").value_or(""), MAX_ERRNO);
    if (!error) {
        return {EINVAL, "errno must be a number from 0 to " + std::to_string(MAX_ERRNO)};
    }
    const auto times = number(argument(command, "times").value_or("0"), MAX_TIMES);
    if (!times) {
        return {EINVAL, "times must be a number from 0 (always) to " + std::to_string(MAX_TIMES)};
    }
    _navigator.failRequests(request->code, static_cast<int>(*error), *times);
    return {};
}

Outcome ControlCommands::objects(const Command &command) const
{
    const auto path = argument(command, "path");
    if (!path) {
        return {EINVAL, "which directory? Give its path below /pps as the argument path"};
    }
    return _device.listObjects(std::string(*path));
}

Outcome ControlCommands::state(const Command &) const
{
    return {0, _device.state()};
}

Outcome ControlCommands::status(const Command &) const
{
    return {0, _device.status()};
}

Outcome ControlCommands::stop(const Command &) const
{
    _device.stop();
    return {};
}

} // namespace kelp::device
