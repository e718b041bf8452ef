// SPDX-License-Identifier: Apache-2.0
// See Scenario.h. A new step is a row of STEPS and its reader.

#include "Scenario.h"

#include "AttributeLines.h"
#include "ErrorNumbers.h"
#include "EventCheck.h"
#include "Failure.h"
#include "PathArgument.h"
#include "device/catalogue/Catalogue.h"

#include <algorithm>
#include <array>

namespace kelp::tool {

namespace {

using What = decltype(Step::what);

constexpr char DEFAULT_TIMEOUT[] = "10";

[[noreturn]] void refuse(const std::string &sentence)
{
    throw Failure(EXIT_USAGE, sentence);
}

// Words from the second on: what stands behind the step's name.
std::string takeArgument(Words &words, const std::string &usage)
{
    if (words.size() < 2) {
        refuse("something is missing: " + usage);
    }
    std::string argument = std::move(words[1]);
    words.erase(words.begin() + 1);
    return argument;
}

void refuseRest(const Words &words, const std::string &usage)
{
    if (words.size() > 1) {
        refuse("\"" + words[1] + "\" is too much: " + usage);
    }
}

std::string usageOf(const device::EventSpec &event)
{
    std::string usage = "send " + std::string(event.name);
    for (const device::ArgumentSpec &argument : event.arguments) {
        const std::string metavar(argument.metavar);
        usage +=
            argument.required ? ' ' + metavar : " [--" + std::string(argument.name) + ' ' + metavar + ']';
    }
    return usage;
}

What readSend(Words &words, const std::string &usage)
{
    const std::string name = takeArgument(words, usage);
    const device::EventSpec *event = device::findEvent(name);
    if (!event) {
        refuse("there is no event \"" + name + "\": kelp-device event --help lists them");
    }
    CommandStep step{"event", {{"name", name}}};
    std::vector<std::string> missing;
    for (const device::ArgumentSpec &argument : event->arguments) {
        const std::string argumentName(argument.name);
        if (auto value = takeOption(words, argumentName)) {
            step.arguments.emplace_back(argumentName, std::move(*value));
        } else if (argument.required) {
            missing.push_back(argumentName);
        }
    }
    refuseOptions(words);
    for (const std::string &argumentName : missing) {
        step.arguments.emplace_back(argumentName, takeArgument(words, usageOf(*event)));
    }
    refuseRest(words, usageOf(*event));
    checkEvent(*event, {step.arguments.begin() + 1, step.arguments.end()});
    return step;
}

What readFail(Words &words, const std::string &usage)
{
    const auto times = takeOption(words, "times");
    refuseOptions(words);
    const std::string request = takeArgument(words, usage);
    const std::string error = takeArgument(words, usage);
    refuseRest(words, usage);
    if (!device::findRequest(request)) {
        refuse("there is no request \"" + request + "\": kelp-device fail --help lists them");
    }
    const auto number = errorNumber(error);
    if (!number) {
        refuse("\"" + error + "\" is no errno: give a name such as EPERM, a number, or 0");
    }
    return CommandStep{"fail",
                       {{"request", request},
                        {"errno", std::to_string(*number)},
                        {"times", std::to_string(times ? countOf(*times, "times") : 0)}}};
}

What readExpect(Words &words, const std::string &)
{
    return ConditionStep{parseCondition({words.begin() + 1, words.end()}), 0, false};
}

What readWait(Words &words, const std::string &)
{
    const std::string timeout = takeOption(words, "timeout").value_or(DEFAULT_TIMEOUT);
    return ConditionStep{parseCondition({words.begin() + 1, words.end()}), secondsOf(timeout, "timeout"),
                         true};
}

What readSet(Words &words, const std::string &usage)
{
    SetStep step{objectPath(takeArgument(words, usage)), {}};
    for (std::size_t place = 1; place < words.size(); ++place) {
        step.lines += settingLine(words[place]);
    }
    return step;
}

What readStart(Words &words, const std::string &usage)
{
    refuseRest(words, usage);
    return StartStep{};
}

What readEnds(Words &words, const std::string &usage)
{
    const std::string timeout = takeOption(words, "timeout").value_or(DEFAULT_TIMEOUT);
    refuseOptions(words);
    const int exitCode = exitCodeOf(takeArgument(words, usage));
    refuseRest(words, usage);
    return EndStep{exitCode, secondsOf(timeout, "timeout")};
}

struct StepSpec {
    std::string_view name;
    std::string_view usage; // what stands behind the name
    What (*read)(Words &words, const std::string &usage);
    std::string_view help;
};

constexpr std::array STEPS = {
    StepSpec{"send", "EVENT [ARGUMENT]...", readSend, "cause an event"},
    StepSpec{"wait", "CONDITION [--timeout SECONDS]", readWait, "until it holds; 10 seconds by default"},
    StepSpec{"expect", "CONDITION", readExpect, "it holds now"},
    StepSpec{"set", "PATH [NAME=VALUE]...", readSet, "publish attributes of an object"},
    StepSpec{"fail", "REQUEST ERRNO [--times N]", readFail, "make requests fail"},
    StepSpec{"start", "", readStart, "start the application; without this step, it starts before the first"},
    StepSpec{"ends", "CODE [--timeout SECONDS]", readEnds,
             "at the end: the application ends by itself, with this code"},
};

std::string usageOf(const StepSpec &step)
{
    return std::string(step.name) + (step.usage.empty() ? "" : " ") + std::string(step.usage);
}

What read(Words words)
{
    const auto spec = std::find_if(STEPS.begin(), STEPS.end(),
                                   [&](const StepSpec &one) { return one.name == words.front(); });
    if (spec == STEPS.end()) {
        std::string names;
        for (const StepSpec &one : STEPS) {
            names += (names.empty() ? "" : ", ") + std::string(one.name);
        }
        refuse("there is no step \"" + words.front() + "\": use one of " + names);
    }
    return spec->read(words, usageOf(*spec));
}

void addStep(Scenario &scenario, unsigned line, std::string_view text)
{
    const Words words = splitWords(text);
    if (words.empty()) {
        return;
    }
    if (scenario.hasEnd()) {
        refuse("nothing comes after the application's end: make \"ends\" the last step");
    }
    Step step{line, {}, read(words)};
    if (scenario.hasStart() && std::holds_alternative<StartStep>(step.what)) {
        refuse("the application has been started already: leave this step out");
    }
    for (const std::string &word : words) {
        step.text += (step.text.empty() ? "" : " ") + word;
    }
    scenario.steps.push_back(std::move(step));
}

} // namespace

bool Scenario::hasStart() const
{
    return std::any_of(steps.begin(), steps.end(),
                       [](const Step &step) { return std::holds_alternative<StartStep>(step.what); });
}

bool Scenario::hasEnd() const
{
    return !steps.empty() && std::holds_alternative<EndStep>(steps.back().what);
}

Scenario parseScenario(const std::string &name, std::string_view text)
{
    Scenario scenario{name, {}};
    std::string complaints;
    for (unsigned line = 1; !text.empty(); ++line) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        try {
            addStep(scenario, line, text.substr(0, end));
        } catch (const Failure &failure) {
            complaints += (complaints.empty() ? "" : "\nkelp-device: ") + name + ':' + std::to_string(line) +
                          ": " + failure.what();
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!complaints.empty()) {
        refuse(complaints);
    }
    return scenario;
}

std::string stepHelp()
{
    std::string help = "Steps of a scenario, one a line; # begins a comment:";
    for (const StepSpec &step : STEPS) {
        const std::string usage = usageOf(step);
        help += "\n  " + usage + std::string(36 - usage.size(), ' ') + std::string(step.help);
    }
    return help;
}

} // namespace kelp::tool
