// SPDX-License-Identifier: Apache-2.0
// kelp-device: runs a device, and drives one that runs. Parses the command line into one of its verbs.

#include "Failure.h"
#include "Verb.h"

#include <algorithm>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

using namespace kelp::tool;

namespace {

struct VerbSpec {
    const char *name;
    const char *help;
    Action (*add)(const Command &verb, const Invocation &invocation);
};

constexpr VerbSpec VERBS[] = {
    {"run", "Run one application on a device of its own", addRun},
    {"start", "Start a device that stays", addStart},
    {"status", "Say whether a device runs, and where", addStatus},
    {"stop", "Stop a device: its applications first, in order", addStop},
    {"event", "Cause an event, as a person or the system would", addEvent},
    {"state", "Show the applications and their windows, prompts and deadlines", addState},
    {"wait", "Wait until a condition holds", addWait},
    {"fail", "Make an application's requests fail", addFail},
    {"pps", "List, read, write, watch and delete publish/subscribe objects", addPps},
};

// Takes what follows "--" off the arguments: it is the application's, whatever it looks like.
Invocation takeApplication(std::vector<std::string> &arguments)
{
    Invocation invocation;
    const auto separator = std::find(arguments.begin(), arguments.end(), "--");
    if (separator != arguments.end()) {
        invocation.hasSeparator = true;
        invocation.application.assign(separator + 1, arguments.end());
        arguments.erase(separator, arguments.end());
    }
    return invocation;
}

// Gives standard streams that were closed a place to lead to, before other files come to stand in theirs.
void openStandardStreams()
{
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(standard, F_GETFD) < 0) {
            (void)::open("/dev/null", O_RDWR); // takes the lowest number that is free: this one
        }
    }
}

int runVerb(std::vector<std::string> arguments)
{
    const Invocation invocation = takeApplication(arguments);
    CommandLine commandLine("kelp-device", "A device for applications of the platform, on Linux.",
                            "kelp-device " KELP_VERSION);
    std::vector<std::pair<Command, Action>> actions;
    for (const VerbSpec &spec : VERBS) {
        const Command verb = commandLine.program().addCommand(spec.name, spec.help);
        actions.emplace_back(verb, spec.add(verb, invocation));
    }
    switch (commandLine.parse(std::move(arguments))) {
    case CommandLine::Outcome::Parsed:
        break;
    case CommandLine::Outcome::Answered:
        return EXIT_HELD;
    case CommandLine::Outcome::Refused:
        return EXIT_USAGE;
    }
    const auto chosen = std::find_if(actions.begin(), actions.end(),
                                     [](const auto &action) { return action.first.isChosen(); });
    if (chosen == actions.end()) {
        throw Failure(EXIT_USAGE, "what to do? Give a verb, such as run or status; --help lists them");
    }
    if (invocation.hasSeparator && chosen->first.name() != "run") {
        throw Failure(EXIT_USAGE, "only run takes an application behind --: leave the -- out");
    }
    return chosen->second();
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardStreams();
    try {
        const int exitCode = runVerb(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
        if (!std::cout.flush() && exitCode == EXIT_HELD) {
            throw Failure(EXIT_REFUSED, "cannot write to standard output: see where it leads");
        }
        return exitCode;
    } catch (const Failure &failure) {
        std::cerr << "kelp-device: " << failure.what() << '\n';
        return failure.exitCode();
    } catch (const std::exception &error) {
        std::cerr << "kelp-device: " << error.what() << '\n';
        return EXIT_REFUSED;
    }
}
