// SPDX-License-Identifier: Apache-2.0
// A person drives an application from another shell.

#include "Journey.h"

#include <navigator/navigator.h>

namespace kelp::test {

class Drive : public Journey
{
};

TEST_F(Drive, EventsReachTheApplicationAndTheStateShowsThem)
{
    const std::string device = folder() + "/d";
    Command application(kelpDevice(
        {"run", "--device", device, "--trace=" + folder() + "/trace", "--", CLIENT_PROGRAM, "obey"}));
    const std::string pid = application.awaitLine("ready");
    application.awaitLine("event " + std::to_string(NAVIGATOR_WINDOW_ACTIVE));

    held({"event", "thumbnail", "--device", device});
    application.awaitLine("event " + std::to_string(NAVIGATOR_WINDOW_STATE));
    const std::string table = held({"state", "--device", device});
    EXPECT_NE(table.find("PROCESS"), std::string::npos);
    EXPECT_NE(table.find(pid), std::string::npos);
    EXPECT_NE(table.find("background"), std::string::npos);
    EXPECT_NE(table.find("thumbnail"), std::string::npos);
    const std::string json = held({"state", "--json", "--device", device});
    EXPECT_EQ(std::count(json.begin(), json.end(), '\n'), 2);
    EXPECT_NE(json.find("\"pid\":" + pid + ",\"processState\":\"background\""), std::string::npos);

    held({"event", "low-memory", "2", "--device", device});
    application.awaitLine("event " + std::to_string(NAVIGATOR_LOW_MEMORY));
    const Result refused = Command::run(kelpDevice({"event", "confirm", "--device", device}));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.errors, "");
    EXPECT_EQ(Command::run(kelpDevice({"event", "rotate", "45", "--device", device})).exitCode, 2);
    held({"fail", "set-badge", "EIO", "--times", "3", "--device", device});

    held({"event", "close", "--device", device});
    EXPECT_EQ(application.finish().exitCode, 5);
    EXPECT_TRUE(std::filesystem::file_size(folder() + "/trace") > 0);
    EXPECT_TRUE(std::filesystem::exists(device)); // a directory that somebody named stays
}

TEST_F(Drive, StopAsksTheApplicationsAndWaitsForThem)
{
    held({"start", "--grace", "86400"});
    const Command::Environment device = {{"KELP_DEVICE", home()}};
    Command obedient({CLIENT_PROGRAM, "obey"}, device);
    obedient.awaitLine("ready");
    Command stubborn({CLIENT_PROGRAM, "stubborn"}, device);
    stubborn.awaitLine("ready");

    const Result timedOut = Command::run(kelpDevice({"stop", "--timeout", "0"}));

    EXPECT_EQ(timedOut.exitCode, 124) << timedOut.errors;
    EXPECT_EQ(obedient.finish().exitCode, 5);
    const Result late = Command::run({CLIENT_PROGRAM, "obey"}, device); // no new ones
    EXPECT_NE(late.errors.find("not admitted"), std::string::npos) << late.errors;
    held({"stop"}); // once more: at once
    EXPECT_EQ(stubborn.finish().exitCode, 128 + SIGKILL);
}

} // namespace kelp::test
