// SPDX-License-Identifier: Apache-2.0
// A device that follows memory pressure, here in a file of the test's own.

#include "Journey.h"

#include <navigator/navigator.h>

#include <fstream>

namespace kelp::test {

class Memory : public Journey
{
protected:
    // At once, as the kernel's own text changes.
    void press(const std::string &some, const std::string &full) const
    {
        const std::string next = file() + ".next";
        std::ofstream(next) << "some avg10=" << some << " avg60=0.00 avg300=0.00 total=1\nfull avg10=" << full
                            << " avg60=0.00 avg300=0.00 total=1\n";
        std::filesystem::rename(next, file());
    }
    std::string file() const { return folder() + "/pressure"; }
    static constexpr char OBJECT[] = "/services/deviceproperties";
};

TEST_F(Memory, PressureReachesTheApplicationAndShows)
{
    const std::string lowMemory = "event " + std::to_string(NAVIGATOR_LOW_MEMORY);
    press("12.00", "11.00");
    std::vector<std::string> start = kelpDevice({"start", "--memory-pressure=pressure"});
    start.insert(start.begin(), {"env", "-C", folder()}); // where a daemon does not stay
    ASSERT_EQ(Command::run(start).exitCode, 0);
    held({"wait", "pps", OBJECT, "memoryPressure=2"});
    Command application({CLIENT_PROGRAM, "obey"}, {{"KELP_DEVICE", home()}});
    application.awaitLine(lowMemory); // it has been short all the time
    EXPECT_NE(held({"state"}).find("\nMemory pressure: critical.\n"), std::string::npos);
    EXPECT_NE(held({"status", "--json"}).find("\"memoryPressure\":2"), std::string::npos);

    press("0.00", "0.00");
    application.awaitLine(lowMemory);
    held({"wait", "pps", OBJECT, "memoryPressure=0"});
    held({"stop"});
    EXPECT_EQ(application.finish().exitCode, 5);

    std::ofstream(folder() + "/s") << "wait pps " << OBJECT
                                   << " memoryPressure=0\nwait active=true\nsend exit\nends 5\n";
    held({"run", "--memory-pressure=" + file(), "--scenario", folder() + "/s", "--", CLIENT_PROGRAM, "obey"});
}

TEST_F(Memory, AFileWithoutFiguresKeepsTheDeviceFromStarting)
{
    const auto expectRefusal = [&](const std::vector<std::string> &arguments, int exitCode) {
        const Result result = Command::run(kelpDevice(arguments));
        EXPECT_EQ(result.exitCode, exitCode);
        EXPECT_NE(result.errors.find("name a file such as /proc/pressure/memory"), std::string::npos)
            << result.errors;
    };

    expectRefusal({"start", "--memory-pressure=" + file()}, 1);
    expectRefusal({"run", "--memory-pressure=" + file(), "--", "true"}, 125);
    std::ofstream(file()) << "some\n";
    expectRefusal({"start", "--memory-pressure=" + file()}, 1);
    EXPECT_EQ(Command::run(kelpDevice({"status"})).exitCode, 3);
}

} // namespace kelp::test
