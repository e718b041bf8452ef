// SPDX-License-Identifier: Apache-2.0
// The kernel's figures, what they come to, and when they are read, on a clock that is stepped.
#include "device/pressure/MemoryPressure.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <utility>
#include <vector>

#include <unistd.h>

namespace kelp::device {

using namespace std::chrono_literals;

namespace {

std::string figures(const std::string &some, const std::string &full)
{
    return "some avg10=" + some + " avg60=99.00 avg300=99.00 total=123\nfull avg10=" + full +
           " avg60=99.00 avg300=99.00 total=18446744073709551615\n";
}

} // namespace

TEST(PressureFigures, areReadAsTheKernelWritesThemAndInNoOtherWay)
{
    const std::string good = figures("12.05", "100.00");
    const auto read = PressureFigures::parse(good);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->some, 1205);
    EXPECT_EQ(read->full, 10000);

    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_FALSE(PressureFigures::parse(good.substr(0, size))) << size;
    }
    const std::string line = good.substr(0, good.find('\n') + 1);
    for (const std::string &text :
         {good + '\n', good + line, line + line, figures("100.01", "0.00"), figures("-1.00", "0.00"),
          figures("1", "0.00"), figures("1.0", "0.00"), figures("1.000", "0.00"), figures(" 1.00", "0.00"),
          figures("nan", "0.00"), figures("1.-5", "0.00"), figures("4294967297.00", "0.00")}) {
        EXPECT_FALSE(PressureFigures::parse(text)) << text;
    }
}

TEST(PressureFigures, comeToASeverityThatDoesNotWaver)
{
    struct Row {
        int some, full, severity;
    };
    const Row rows[] = {
        {999, 0, 0},     {1000, 0, 1},  {500, 0, 1},   {499, 0, 0},   {999, 999, 0},
        {1000, 1000, 2}, {999, 500, 2}, {999, 499, 1}, {999, 999, 1}, {499, 499, 0},
    };
    int severity = 0;
    for (const Row &row : rows) {
        const int before = severity;
        severity = severityAfter(before, {row.some, row.full});
        EXPECT_EQ(severity, row.severity) << row.some << ' ' << row.full << " after " << before;
    }
}

class MemoryPressureFile : public testing::Test
{
protected:
    MemoryPressureFile()
    {
        clock.setSpeed(0);
        ::close(::mkstemp(path));
    }
    ~MemoryPressureFile() override { ::unlink(path); }

    void write(const std::string &text) const { std::ofstream(path) << text; }
    void pass(Duration duration, MemoryPressure &pressure)
    {
        clock.stepTo(clock.now() + duration);
        pressure.step();
    }
    MemoryPressure follow()
    {
        return {clock,
                path,
                {[this](int severity) { said.push_back(std::to_string(severity)); },
                 [this](const std::string &text) {
                     said.push_back(text);
                 }}};
    }

    Clock clock;
    char path[32] = "/tmp/kelp-pressure.XXXXXX";
    std::vector<std::string> said;
};

TEST_F(MemoryPressureFile, isReadOnceASecondOfTheDevicesClock)
{
    using Lines = std::vector<std::string>;
    write(figures("10.00", "0.00"));
    MemoryPressure pressure = follow();
    pressure.step();
    EXPECT_EQ(std::exchange(said, {}), Lines{"1"});

    write(figures("10.00", "10.00"));
    pass(1s - 1ns, pressure);
    EXPECT_EQ(said, Lines{});
    EXPECT_EQ(pressure.nextDeadline(), clock.now() + 1ns);
    pass(1ns, pressure);
    pass(1s, pressure);
    EXPECT_EQ(std::exchange(said, {}), Lines{"2"});

    const std::string lost = "memory pressure stays as it is: " + std::string(path) + ' ';
    for (int outage = 0; outage < 2; ++outage) {
        write("some avg10=0.00");
        pass(1s, pressure);
        pass(1s, pressure);
        EXPECT_EQ(std::exchange(said, {}), Lines{lost + "has no pressure figures"});
        write(figures("10.00", "10.00"));
        pass(1s, pressure);
    }
    write(figures("0.00", "0.00"));
    pass(1s, pressure);
    EXPECT_EQ(said, Lines{"0"});
}

} // namespace kelp::device
