// SPDX-License-Identifier: Apache-2.0
// An application for tests: becomes one of the device that KELP_DEVICE names, prints "ready" and then each event's
// code. With "obey" it ends at the exit event with exit code 5; with "stubborn" it ignores that and SIGTERM; with
// "share" it leaves a child that keeps its connection open, prints its number, and obeys.

#include "DoorClient.h"

#include <navigator/navigator.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include <unistd.h>

using namespace kelp;

namespace {

void say(const char *word, int number)
{
    std::printf("%s %d\n", word, number);
    std::fflush(stdout);
}

void leaveChild()
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::pause();
        ::_exit(0);
    }
    say("child", child);
}

int live(std::string_view mode)
{
    test::DoorClient client(std::getenv("KELP_DEVICE"), link::Role::Application);
    const link::UniqueFd events = client.openEvents();
    if (mode == "share") {
        leaveChild();
    }
    say("ready", ::getpid());
    while (const auto event = test::nextEvent(events.get())) {
        say("event", event->code);
        if (event->code == NAVIGATOR_EXIT && mode != "stubborn") {
            return 5;
        }
    }
    return 6; // the device has gone
}

} // namespace

int main(int argc, char *argv[])
{
    const std::string_view mode = argc > 1 ? argv[1] : "obey";
    if (mode == "stubborn") {
        std::signal(SIGTERM, SIG_IGN);
    }
    try {
        return live(mode);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 7;
    }
}
