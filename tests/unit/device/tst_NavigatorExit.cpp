// SPDX-License-Identifier: Apache-2.0
// The end of an application: the close prompt, the exit, its grace and extensions, and what follows for one
// that overstays.
#include "NavigatorFixture.h"

namespace kelp::device {

using link::RequestCode;
using NavigatorExit = NavigatorFixture;

const Lines EXIT_LINES = {"1: app 2", "1: exit"};

TEST_F(NavigatorExit, closeWithAPromptWaitsForThePerson)
{
    const ProcessId process = navigator.connected(101, "a");
    request(process, RequestCode::SetClosePrompt, "Unsaved", 0, "Close all the same?"); // no application yet
    navigator.openedEvents(process, 1);
    sent();

    EXPECT_EQ(event("confirm"), EPERM);
    EXPECT_TRUE(lastSays("shows no close prompt"));
    EXPECT_EQ(event("close"), 0);
    EXPECT_TRUE(state().promptShown);
    EXPECT_EQ(state().promptTitle, "Unsaved");
    EXPECT_EQ(event("close"), 0);
    EXPECT_TRUE(lastSays("already"));
    EXPECT_EQ(event("dismiss"), 0);
    EXPECT_FALSE(state().promptShown);
    EXPECT_EQ(event("dismiss"), EPERM);
    EXPECT_EQ(event("confirm"), EPERM);
    EXPECT_EQ(sent(), Lines());

    event("close");
    EXPECT_EQ(request(process, RequestCode::SetClosePrompt, "Sure?"), 0); // replaces what is shown
    EXPECT_TRUE(state().promptShown);
    EXPECT_EQ(state().promptTitle, "Sure?");
    EXPECT_EQ(event("confirm"), 0);
    EXPECT_EQ(sent(), EXIT_LINES);
    EXPECT_FALSE(state().promptShown);
}

TEST_F(NavigatorExit, shownPromptGoesWithThePromptAndWithAnyOtherExit)
{
    const ProcessId process = launch("a");
    request(process, RequestCode::SetClosePrompt, "Sure?");
    event("close");
    EXPECT_EQ(request(process, RequestCode::ClearClosePrompt), 0);
    EXPECT_FALSE(state().hasClosePrompt);
    EXPECT_EQ(event("confirm"), EPERM);
    EXPECT_EQ(request(process, RequestCode::ClearClosePrompt), 0);

    request(process, RequestCode::SetClosePrompt, "Sure?");
    event("close");
    EXPECT_EQ(request(process, RequestCode::CloseWindow), 0);

    EXPECT_EQ(sent(), EXIT_LINES);
    EXPECT_FALSE(state().promptShown);
    EXPECT_EQ(event("confirm"), EPERM);
}

TEST_F(NavigatorExit, everyRoadLeadsToTheSameExitOnce)
{
    launch("a");
    launch("b");
    launch("c");

    EXPECT_EQ(event("close", {{"app", "a"}}), 0);
    EXPECT_EQ(event("exit", {{"app", "a"}}), 0);
    EXPECT_TRUE(lastSays("exiting already"));
    EXPECT_EQ(request(1, RequestCode::CloseWindow), 0);
    EXPECT_EQ(event("close", {{"app", "a"}}), EPERM);
    EXPECT_EQ(event("exit", {{"app", "b"}}), 0);
    step(1s);
    navigator.exitAll();

    EXPECT_EQ(sent(), Lines({"1: app 2", "1: exit", "2: app 2", "2: exit", "3: app 2", "3: exit"}));
    EXPECT_EQ(state(0).deadlines.at(0).remaining, 2s);
    EXPECT_EQ(state(2).deadlines.at(0).remaining, 3s);
}

TEST_F(NavigatorExit, stoppingApplicationRefusesAllButLowMemory)
{
    const ProcessId process = launch("a");
    event("open-group");
    event("exit");
    sent();

    const std::pair<std::string, Arguments> refused[] = {
        {"fullscreen", {}},
        {"thumbnail", {}},
        {"invisible", {}},
        {"activate", {{"group", "a/2"}}},
        {"deactivate", {{"group", "a/2"}}},
        {"open-group", {}},
        {"close-group", {{"group", "a/1"}}},
        {"close", {}},
        {"pool", {}},
    };
    for (const auto &[name, arguments] : refused) {
        EXPECT_EQ(event(name, arguments), EPERM) << name;
        EXPECT_TRUE(lastSays("a is stopping")) << name;
    }
    EXPECT_EQ(request(process, RequestCode::RawWrite, "msg::minimizeWindow\n"), EPERM);
    EXPECT_EQ(request(process, RequestCode::ExtendTimeout, {}, 500), EPERM);
    EXPECT_EQ(event("low-memory", {{"severity", "2"}}), 0);
    EXPECT_EQ(sent(), Lines({"1: memory 2"}));

    launch("b"); // moves its window aside, but does not call it back from stopping
    EXPECT_EQ(state(0).appState, NAVIGATOR_APP_STOPPING);
    EXPECT_EQ(state(0).groups.at(1).windowState, NAVIGATOR_WINDOW_THUMBNAIL);
}

TEST_F(NavigatorExit, extensionsProlongTheGraceUpToTheirLimit)
{
    const ProcessId process = launch("a");
    EXPECT_EQ(request(process, RequestCode::ExtendTerminate), EINVAL);
    event("exit");
    step(1s);

    for (int extension = 1; extension <= 15; ++extension) {
        EXPECT_EQ(request(process, RequestCode::ExtendTerminate), 0) << extension;
    }
    EXPECT_EQ(request(process, RequestCode::ExtendTerminate), EPERM);
    EXPECT_TRUE(lastSays("at most 30.000 s"));
    EXPECT_EQ(state().deadlines.at(0).remaining, 32s); // of 3 s and 15 times 2 s, 1 s has passed
    EXPECT_EQ(sent(), EXIT_LINES);

    step(32s - 1ns);
    EXPECT_EQ(sent(), Lines());
    step(1ns);
    EXPECT_EQ(sent(), Lines({"1: signal 15"}));
    EXPECT_EQ(request(process, RequestCode::ExtendTerminate), EINVAL);
    EXPECT_EQ(state().deadlines.at(0).name, "kill");
    EXPECT_EQ(state().deadlines.at(0).remaining, 1s);
    step(1s);
    EXPECT_EQ(sent(), Lines({"1: signal 9"}));
    EXPECT_EQ(navigator.nextDeadline(), std::nullopt);
}

TEST_F(NavigatorExit, lateClockLeavesTimeBetweenTheSignals)
{
    launch("a");
    event("exit");
    sent();

    step(1h);

    EXPECT_EQ(sent(), Lines({"1: signal 15"}));
    EXPECT_EQ(navigator.nextDeadline(), clock.now() + 1s);
}

TEST_F(NavigatorExit, whoDoesNotReadIsEndedAllTheSame)
{
    launch("a");
    port.rooms = {{1, 1}};

    EXPECT_EQ(event("exit"), 0);

    EXPECT_EQ(sent(), Lines({"1: app 2"}));
    step(3s);
    EXPECT_EQ(sent(), Lines({"1: signal 15"}));
}

TEST_F(NavigatorExit, severalDeadlinesAreHandledInTheOrderOfTheirMoments)
{
    for (const std::string name : {"a", "b", "c"}) {
        launch(name);
    }
    event("exit", {{"app", "c"}});
    step(1s);
    event("exit", {{"app", "b"}});
    event("exit", {{"app", "a"}});
    request(3, RequestCode::ExtendTerminate); // now the last
    event("pool", {{"app", "a"}});
    EXPECT_EQ(last.error, EPERM);
    sent();

    step(1h);

    EXPECT_EQ(sent(), Lines({"2: signal 15", "1: signal 15", "3: signal 15"}));
}

TEST_F(NavigatorExit, whoIsGoneTakesItsDeadlinesAndPromptsAlong)
{
    const ProcessId process = launch("a");
    launch("b");
    event("exit", {{"app", "b"}});
    event("pool", {{"app", "a"}});
    request(process, RequestCode::SetClosePrompt, "Sure?");
    event("close", {{"app", "a"}});
    sent();
    port.traces.clear();

    navigator.disconnected(1);
    navigator.disconnected(2);
    navigator.disconnected(2); // nobody any more

    EXPECT_EQ(port.traces, Lines({"0 101 a|gone", "0 102 b|gone"}));
    EXPECT_EQ(navigator.nextDeadline(), std::nullopt);
    EXPECT_TRUE(navigator.applications().empty());
    EXPECT_EQ(event("confirm"), ESRCH);
    EXPECT_EQ(request(process, RequestCode::CloseWindow), EINVAL);
    step(1h);
    EXPECT_EQ(sent(), Lines());
}

TEST_F(NavigatorExit, traceTellsTheWholeStory)
{
    const ProcessId process = launch("a");
    request(process, RequestCode::SetClosePrompt, "Really\n?");
    event("close");
    event("confirm");
    step(1500ms);
    request(process, RequestCode::ExtendTerminate);
    step(3500ms);
    step(1s);
    event("close", {{"app", "a"}});
    navigator.disconnected(process);

    const Lines expected = {
        "0 101 a|request set-close-prompt \"Really\\n?\" \"\": done",
        "0 101 a|close prompt shown: \"Really\\n?\"",
        "0 0 |command close: done, the close prompt is shown: answer it with confirm or dismiss",
        "0 101 a|close prompt confirmed",
        "0 101 a|exits: it has until 3603.000 s",
        "0 101 a|sent app-state stopping",
        "0 101 a|sent exit",
        "0 0 |command confirm: done, a has 3.000 s to end",
        "1500 101 a|extension granted: it has until 3605.000 s",
        "1500 101 a|request extend-terminate: done, a has 3.500 s to end",
        "5000 101 a|terminate reached: it overstays, SIGTERM sent",
        "6000 101 a|kill reached: it is still there, SIGKILL sent",
        "6000 0 |command close app=\"a\": EPERM, a is stopping: it is being closed already",
        "6000 101 a|gone",
    };
    EXPECT_EQ(port.traces, expected);
}

class NavigatorExitNotEnforced : public NavigatorFixture
{
protected:
    static Settings settings()
    {
        Settings settings;
        settings.endOverstaying = false;
        return settings;
    }
    NavigatorExitNotEnforced() : NavigatorFixture(settings()) {}
};

TEST_F(NavigatorExitNotEnforced, whoOverstaysIsOnlyReported)
{
    launch("a");
    event("exit");
    sent();

    step(1h);

    EXPECT_EQ(sent(), Lines());
    EXPECT_EQ(port.traces.back(), "3600000 101 a|terminate reached: it overstays, and is left running");
    EXPECT_EQ(navigator.nextDeadline(), std::nullopt);
}

} // namespace kelp::device
