// SPDX-License-Identifier: Apache-2.0
// Where a device lives: what start accepts, what the other verbs say of a place where none runs.

#include "Journey.h"

#include <csignal>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

namespace kelp::test {

class Directory : public Journey
{
protected:
    // The number of the device that lives there, from its lock.
    static pid_t deviceIn(const std::string &path)
    {
        pid_t pid = 0;
        std::ifstream(path + "/lock") >> pid;
        return pid;
    }

    static void expectFailure(const std::vector<std::string> &arguments, int exitCode,
                              const std::string &sentence)
    {
        const Result result = Command::run(kelpDevice(arguments));
        EXPECT_EQ(result.exitCode, exitCode) << arguments.front();
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.errors.find(sentence), std::string::npos) << result.errors;
    }
};

TEST_F(Directory, AnUnfitOneIsRefusedByDeviceAndCommandsAlike)
{
    const std::string file = folder() + "/file";
    std::ofstream(file) << "text";
    const std::string open = folder() + "/open";
    ASSERT_EQ(::mkdir(open.c_str(), 0755), 0);
    const std::string target = folder() + "/target";
    ASSERT_EQ(::mkdir(target.c_str(), 0700), 0);
    const std::string link = folder() + "/link";
    std::filesystem::create_symlink(target, link);
    const std::string foreign = ::geteuid() == 0 ? folder() + "/foreign" : "/";
    if (::geteuid() == 0) {
        ASSERT_EQ(::mkdir(foreign.c_str(), 0700), 0);
        ASSERT_EQ(::chown(foreign.c_str(), 65534, 65534), 0);
    }
    const std::string tooLong = folder() + "/" + std::string(100, 'x');

    struct Row {
        std::string path;
        std::string sentence;
    };
    const Row rows[] = {
        {file, "is not a directory"},
        {file + "/below", "cannot be opened"},
        {open, "is open to other users (mode 0755)"},
        {link, "is a symbolic link"},
        {tooLong, "is too long for a socket (" + std::to_string(tooLong.size()) + " bytes"},
        {foreign, "belongs to another user"},
    };
    for (const Row &row : rows) {
        expectFailure({"start", "--device", row.path}, 1, row.sentence);
        expectFailure({"status", "--device", row.path}, 3, row.sentence);
    }
    EXPECT_FALSE(std::filesystem::exists(tooLong));
    expectFailure({"state", "--device", folder() + "/missing"}, 3, "there is no such directory");
    expectFailure({"stop", "--device", target}, 3, "no device runs in " + target);
}

TEST_F(Directory, ADeviceStaysUntilItIsStoppedAndAnotherOneCannotJoinIt)
{
    ASSERT_EQ(held({"start"}), "KELP_DEVICE=" + home() + "; export KELP_DEVICE;\n");
    const pid_t device = deviceIn(home());

    EXPECT_NE(held({"status"}).find("pid " + std::to_string(device)), std::string::npos);
    EXPECT_NE(held({"status", "--json"}).find("\"pid\":" + std::to_string(device)), std::string::npos);
    EXPECT_EQ(held({"state"}), "No application runs.\nScreen 768x1280, bright, at 0 degrees.\n");
    expectFailure({"start"}, 1,
                  "a device already runs in " + home() + " (pid " + std::to_string(device) + ")");
    expectFailure({"event", "exit"}, 1, "");
    struct stat socket {
    };
    ASSERT_EQ(::stat((home() + "/socket").c_str(), &socket), 0);
    EXPECT_EQ(socket.st_mode & 07777u, 0600u);

    held({"stop"});

    expectFailure({"status"}, 3, "no device runs in " + home());
    held({"start"}); // at once: stop has waited for the end
    EXPECT_NE(deviceIn(home()), device);
}

TEST_F(Directory, WhatADeadDeviceLeavesIsTakenOver)
{
    held({"start"});
    const pid_t dead = deviceIn(home());
    ASSERT_EQ(::kill(dead, SIGKILL), 0);
    eventually([&] { return Command::run(kelpDevice({"status"})).exitCode == 3; });

    expectFailure({"status"}, 3, "has died and left its socket");
    eventually(
        [&] { return Command::run(kelpDevice({"start"})).exitCode == 0; }); // it may still hold its lock

    EXPECT_NE(held({"status"}).find("A device runs in " + home()), std::string::npos);
    EXPECT_NE(deviceIn(home()), dead);
}

TEST_F(Directory, ThePathIsQuotedForTheShellAndServesAsItIs)
{
    const std::string odd = folder() + "/it's odd";

    const Result result =
        Command::run({"sh", "-c", "eval \"$(\"$0\" start --device \"$1\")\" && \"$0\" status && \"$0\" stop",
                      KELP_DEVICE_PROGRAM, odd});

    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_NE(result.output.find("A device runs in " + odd), std::string::npos);
}

TEST_F(Directory, ADeviceOutOfDescriptorsServesThoseItHasAndRecovers)
{
#ifdef SANITIZER_NEEDS_DESCRIPTORS
    GTEST_SKIP() << "the sanitizer's own checks need descriptors, and take the lack of them for a fault";
#endif
    const Result started =
        Command::run({"sh", "-c", "exec 9>&1; ulimit -n 32; exec \"$0\" start", KELP_DEVICE_PROGRAM});
    ASSERT_EQ(started.exitCode, 0) << started.errors; // and no copy of the pipe is left to the device
    DoorClient early(home(), link::Role::Control);
    constexpr std::size_t MANY = 64;
    std::vector<DoorClient> many;
    many.reserve(MANY);
    for (std::size_t i = 0; i < MANY; ++i) {
        many.emplace_back(home());
    }

    EXPECT_EQ(early.command("status").status, 0);
    EXPECT_FALSE(many.back().receive()); // turned away
    EXPECT_EQ(early.command("status").status, 0);
    many.clear();
    eventually([&] { return Command::run(kelpDevice({"status"})).exitCode == 0; });
}

} // namespace kelp::test
