// SPDX-License-Identifier: Apache-2.0
// What applications hear of the device's memory pressure, and how they are called.
#include "NavigatorFixture.h"

namespace kelp::device {

class NavigatorMemory : public NavigatorFixture
{
};

TEST_F(NavigatorMemory, pressureIsToldWhenItChangesAndAtLaunch)
{
    EXPECT_EQ(navigator.memorySeverity(), std::nullopt);
    launch("a");
    navigator.setMemorySeverity(NAVIGATOR_MEMORY_CLEAR);
    EXPECT_EQ(sent(), Lines{});

    port.rooms[1] = 0; // does not read, which keeps nothing from the other
    launch("b");
    navigator.setMemorySeverity(NAVIGATOR_MEMORY_LOW);
    EXPECT_EQ(sent(), Lines{"2: memory 1"});
    EXPECT_EQ(navigator.memorySeverity(), 1);

    const ProcessId late = navigator.connected(300, "c");
    navigator.openedEvents(late, 9);
    const Lines launched = sent();
    EXPECT_EQ(launched.back(), "3: memory 1");
    EXPECT_EQ(event("low-memory", {{"severity", "0"}, {"app", "b"}}), 0); // by hand: changes no pressure
    EXPECT_EQ(navigator.memorySeverity(), 1);
    EXPECT_EQ(sent(), Lines{"2: memory 0"});

    navigator.setMemorySeverity(NAVIGATOR_MEMORY_CLEAR);
    EXPECT_EQ(sent(), (Lines{"2: memory 0", "3: memory 0"}));
    navigator.openedEvents(navigator.connected(301, "d"), 10);
    EXPECT_EQ(sent().back(), "4: active d/1");
}

TEST_F(NavigatorMemory, titleAndVersionAreAskedForAtLaunchAndFitToBeShown)
{
    port.labels[101] = {"Caf\xc3\xa9\n\x1b[2J\xff\xc2\x9b\xe2\x80\xa8", std::string(201, 'v')};
    launch("a");
    launch("b");

    const std::string unfit = "\xef\xbf\xbd";
    EXPECT_EQ(state().label.title, "Caf\xc3\xa9" + unfit + unfit + "[2J" + unfit + unfit + unfit);
    EXPECT_EQ(state().label.version, std::string(200, 'v') + "...");
    EXPECT_EQ(state(1).label.title, "");
}

} // namespace kelp::device
