// SPDX-License-Identifier: Apache-2.0
// The state as JSON, read back from its text.

#include "device/report/StateReport.h"

#include <navigator/navigator.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace kelp::device {

TEST(StateReport, TellsTheDeviceAndThenEachApplication)
{
    Clock clock;
    clock.setSpeed(0);
    ApplicationState bare;
    bare.id = "bare";
    bare.pid = 2;
    bare.appState = NAVIGATOR_APP_STOPPING;
    ApplicationState full = bare;
    full.appState = NAVIGATOR_APP_BACKGROUND;
    full.groups = {{"g1", NAVIGATOR_WINDOW_FULLSCREEN, true}, {"g2", NAVIGATOR_WINDOW_THUMBNAIL, false}};
    full.hasClosePrompt = true;
    full.promptTitle = "no UTF-8: \xff";
    full.promptMessage = "line\nfeed";
    full.windowCreationTimeout = std::chrono::milliseconds(1500);
    full.deadlines = {{"pool", "p1", std::chrono::microseconds(2999)}};

    full.hasBadge = full.isOrientationLocked = full.wantsSwipeStart = true;
    full.rotation = {"rotation-1", 270, true};

    std::istringstream lines(stateReport({7, "/d", clock, 2, {{{720, 800}, "dark"}, 90}, 2}, {bare, full}));
    nlohmann::json device;
    nlohmann::json first;
    nlohmann::json second;
    std::string line;
    for (nlohmann::json *object : {&device, &first, &second}) {
        ASSERT_TRUE(std::getline(lines, line));
        *object = nlohmann::json::parse(line);
    }
    EXPECT_FALSE(std::getline(lines, line));

    EXPECT_EQ(device.at("pid"), 7);
    EXPECT_EQ(device.at("clock").at("frozen"), true);
    EXPECT_EQ(device.at("applications"), 2);
    EXPECT_EQ(device.at("memoryPressure"), 2);
    EXPECT_TRUE(nlohmann::json::parse(deviceReport({7, "/d", clock})).at("memoryPressure").is_null());
    EXPECT_TRUE(first.at("title").is_null());
    EXPECT_EQ(first.at("processState"), "stopping");
    EXPECT_TRUE(first.at("closePrompt").is_null());
    EXPECT_TRUE(first.at("windowCreationTimeoutMs").is_null());
    EXPECT_EQ(second.at("processState"), "background");
    EXPECT_EQ(second.at("windowGroups").dump(), R"([{"active":true,"id":"g1","windowState":"fullscreen"},)"
                                                R"({"active":false,"id":"g2","windowState":"thumbnail"}])");
    EXPECT_EQ(second.at("closePrompt").at("title"), "no UTF-8: \xef\xbf\xbd");
    EXPECT_EQ(second.at("windowCreationTimeoutMs"), 1500);
    EXPECT_EQ(second.at("deadlines").dump(), R"([{"id":"p1","name":"pool","remainingMs":2}])");
    EXPECT_EQ(device.at("screen").dump(), R"({"angle":90,"height":800,"theme":"dark","width":720})");
    EXPECT_EQ(second.at("badge"), "splat");
    EXPECT_EQ(second.at("orientationLocked"), true);
    EXPECT_EQ(second.at("swipeStart"), true);
    EXPECT_TRUE(first.at("rotation").is_null());
    EXPECT_EQ(second.at("rotation").dump(), R"({"angle":270,"id":"rotation-1","phase":"turning"})");
}

} // namespace kelp::device
