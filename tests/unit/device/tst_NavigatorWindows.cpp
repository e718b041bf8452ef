// SPDX-License-Identifier: Apache-2.0
// Launches and window groups: who is told what, in which order, when one comes to the front and another gives
// way.
#include "NavigatorFixture.h"

namespace kelp::device {

using NavigatorWindows = NavigatorFixture;

TEST_F(NavigatorWindows, launchShowsTheApplicationAndMovesTheOtherAside)
{
    const ProcessId first = navigator.connected(101, "a");
    EXPECT_TRUE(navigator.applications().empty());

    navigator.openedEvents(first, 1);
    EXPECT_EQ(sent(), Lines({"1: app 0", "1: window 0 a/1", "1: active a/1"}));

    navigator.openedEvents(navigator.connected(102, "b"), 2);
    EXPECT_EQ(sent(), Lines({"1: inactive a/1", "1: window 1 a/1", "1: app 1", //
                             "2: app 0", "2: window 0 b/1", "2: active b/1"}));
    EXPECT_EQ(state(0).id, "a");
    EXPECT_EQ(state(1).id, "b");
    EXPECT_EQ(state(1).pid, 102);
}

TEST_F(NavigatorWindows, laterChannelAloneIsToldThePresentState)
{
    const ProcessId process = launch("a");
    event("open-group");
    event("deactivate", {{"group", "a/2"}});
    sent();

    navigator.openedEvents(process, 7);

    EXPECT_EQ(sent(), Lines({"channel 7: app 0", "channel 7: window 2 a/1", "channel 7: inactive a/1",
                             "channel 7: window 0 a/2", "channel 7: inactive a/2"}));
}

TEST_F(NavigatorWindows, namesBecomeIdsThatAreFitAndUnique)
{
    const std::pair<std::string, std::string> cases[] = {
        {"lifecycle", "lifecycle"},
        {"lifecycle", "lifecycle-2"},
        {"lifecycle", "lifecycle-3"},
        {"/opt/My App\n\xff", "optMyApp"},
        {"--..-x", "x"},
        {"", "application"},
        {"..", "application-2"},
        {std::string(300, 'x'), std::string(200, 'x')},
    };
    for (std::size_t index = 0; index < std::size(cases); ++index) {
        launch(cases[index].first);
        EXPECT_EQ(state(index).id, cases[index].second);
        EXPECT_EQ(state(index).groups.at(0).id, cases[index].second + "/1");
    }

    navigator.disconnected(2);
    launch("lifecycle");
    navigator.connected(200, "no application");
    EXPECT_EQ(navigator.launches(), std::size(cases) + 1); // whoever has gone

    EXPECT_EQ(navigator.applications().back().id, "lifecycle-2");
}

struct Move {
    std::string name;
    Arguments arguments;
    int error;
    Lines lines;
};

TEST_F(NavigatorWindows, movesOfOneGroupTellWhatChangesAndNothingElse)
{
    launch("a");
    const Move moves[] = {
        {"fullscreen", {}, 0, {}},
        {"activate", {}, 0, {}},
        {"deactivate", {}, 0, {"1: inactive a/1"}},
        {"deactivate", {}, 0, {}},
        {"fullscreen", {}, 0, {"1: active a/1"}},
        {"thumbnail", {}, 0, {"1: inactive a/1", "1: window 1 a/1", "1: app 1"}},
        {"thumbnail", {}, 0, {}},
        {"activate", {}, EPERM, {}},
        {"deactivate", {}, EPERM, {}},
        {"invisible", {}, 0, {"1: window 2 a/1"}},
        {"fullscreen", {}, 0, {"1: app 0", "1: window 0 a/1", "1: active a/1"}},
        {"deactivate", {}, 0, {"1: inactive a/1"}},
        {"invisible", {}, 0, {"1: window 2 a/1", "1: app 1"}},
        {"close-group", {{"group", "a/1"}}, EPERM, {}},
    };
    for (const Move &move : moves) {
        EXPECT_EQ(event(move.name, move.arguments), move.error) << move.name << ": " << last.text;
        EXPECT_EQ(sent(), move.lines) << move.name;
        EXPECT_EQ(last.text.empty(), !move.lines.empty())
            << move.name << " does not say why it sends nothing";
    }
    EXPECT_TRUE(lastSays("use close"));
}

TEST_F(NavigatorWindows, groupsOfOneApplicationTakeTurnsWhileItStaysInTheForeground)
{
    launch("a");
    const Move moves[] = {
        {"open-group", {}, 0, {"1: inactive a/1", "1: window 2 a/1", "1: window 0 a/2", "1: active a/2"}},
        {"fullscreen", {}, 0, {"1: inactive a/2", "1: window 2 a/2", "1: window 0 a/1", "1: active a/1"}},
        {"thumbnail", {{"group", "a/2"}}, 0, {"1: window 1 a/2"}}, // the main group is in front
        {"close-group", {{"group", "a/2"}}, 0, {"1: window 2 a/2"}},
        {"open-group", {}, 0, {"1: inactive a/1", "1: window 2 a/1", "1: window 0 a/3", "1: active a/3"}},
        {"close-group", {{"group", "a/3"}}, 0, {"1: inactive a/3", "1: window 2 a/3", "1: app 1"}},
        {"close-group", {{"group", "a/3"}}, ESRCH, {}},
    };
    for (const Move &move : moves) {
        EXPECT_EQ(event(move.name, move.arguments), move.error) << move.name << ": " << last.text;
        EXPECT_EQ(sent(), move.lines) << move.name;
    }
    EXPECT_EQ(state().groups.size(), 1u);
}

TEST_F(NavigatorWindows, openedGroupComesBeforeTheOtherApplicationUnderItsOwnId)
{
    launch("a");
    launch("b");

    EXPECT_EQ(event("open-group", {{"app", "a"}, {"id", "c/1"}}), 0);
    EXPECT_EQ(last.text, "c/1");
    EXPECT_EQ(sent(), Lines({"2: inactive b/1", "2: window 1 b/1", "2: app 1", //
                             "1: app 0", "1: window 0 c/1", "1: active c/1"}));

    EXPECT_EQ(event("open-group", {{"app", "b"}, {"id", "c/1"}}), EEXIST);
    launch("c"); // passes over the id that is taken
    EXPECT_EQ(state(2).groups.at(0).id, "c/2");
    EXPECT_EQ(event("open-group", {{"app", "c"}}), 0);
    EXPECT_EQ(last.text, "c/3");
}

TEST_F(NavigatorWindows, groupsOfOneApplicationAreBounded)
{
    launch("a");
    for (int opened = 1; opened < 32; ++opened) {
        ASSERT_EQ(event("open-group"), 0);
    }

    EXPECT_EQ(event("open-group"), EMFILE);
    EXPECT_TRUE(lastSays("close-group"));
    EXPECT_EQ(state().groups.size(), 32u);
}

TEST_F(NavigatorWindows, eventWithoutRoomForAllOfItChangesNothing)
{
    launch("a");
    launch("b");
    port.rooms = {{1, 2}, {2, 100}}; // a needs three to come to the front
    const Move moves[] = {
        {"fullscreen", {{"app", "a"}}, EAGAIN, {}},
        {"open-group", {{"app", "a"}}, EAGAIN, {}},
        {"low-memory", {{"severity", "1"}}, 0, {"1: memory 1", "2: memory 1"}},
        {"low-memory", {{"severity", "1"}}, 0, {"1: memory 1", "2: memory 1"}},
        {"low-memory", {{"severity", "1"}}, EAGAIN, {}}, // one that has no room stops it for all
        {"pool", {{"app", "a"}}, EAGAIN, {}},
    };
    for (const Move &move : moves) {
        EXPECT_EQ(event(move.name, move.arguments), move.error) << move.name;
        EXPECT_EQ(sent(), move.lines) << move.name;
    }
    EXPECT_TRUE(lastSays("a does not read its events"));
    EXPECT_EQ(state(0).groups.size(), 1u);
    EXPECT_EQ(state(1).groups.at(0).active, true);
    EXPECT_EQ(navigator.nextDeadline(), std::nullopt);

    port.rooms.clear();
    EXPECT_EQ(event("pool", {{"app", "a"}}), 0);
    EXPECT_EQ(last.text, "pool-1");
    EXPECT_EQ(event("open-group", {{"app", "a"}}), 0);
    EXPECT_EQ(last.text, "a/2"); // the refusals have used up no id
    port.rooms = {{1, 2}};
    EXPECT_EQ(event("close-group", {{"group", "a/2"}}), EAGAIN);
    EXPECT_EQ(state(0).groups.size(), 2u);
}

TEST_F(NavigatorWindows, launchGoesOnWhereWhoIsDisplacedDoesNotRead)
{
    launch("a");
    port.rooms = {{1, 1}};

    navigator.openedEvents(navigator.connected(102, "b"), 2);

    EXPECT_EQ(sent(), Lines({"1: inactive a/1", "2: app 0", "2: window 0 b/1", "2: active b/1"}));
    EXPECT_EQ(state(0).appState, NAVIGATOR_APP_BACKGROUND);
    EXPECT_EQ(state(0).groups.at(0).windowState, NAVIGATOR_WINDOW_THUMBNAIL);
    EXPECT_EQ(port.traces.at(3), "0 101 a|dropped window-state thumbnail a/1: it does not read its events");
}

} // namespace kelp::device
