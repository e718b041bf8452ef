// SPDX-License-Identifier: Apache-2.0
// The ground that the journeys start from: a folder of the test's own, and no device in the environment.
#pragma once

#include "Command.h"
#include "tests/doors/DoorClient.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace kelp::test {

class Journey : public testing::Test
{
protected:
    Journey()
    {
        ::unsetenv("KELP_DEVICE");
        ::setenv("XDG_RUNTIME_DIR", _folder.c_str(), 1);
    }
    ~Journey() override
    {
        (void)Command::run(kelpDevice({"stop", "--timeout", "0"})); // where one still runs
        (void)Command::run(kelpDevice({"stop"}));
        std::filesystem::remove_all(_folder);
    }

    const std::string &folder() const { return _folder; }

    // Where a device lives by default.
    std::string home() const { return _folder + "/kelp-device"; }

    // Runs a kelp-device command that must succeed; returns its output.
    static std::string held(const std::vector<std::string> &arguments)
    {
        const Result result = Command::run(kelpDevice(arguments));
        EXPECT_EQ(result.exitCode, 0) << arguments.front() << ": " << result.errors;
        return result.output;
    }

private:
    char _pattern[32] = "/tmp/kelp-journey.XXXXXX";
    std::string _folder = ::mkdtemp(_pattern);
};

} // namespace kelp::test
