// SPDX-License-Identifier: Apache-2.0
// The device's clock where it is frozen, stepped and changes its speed. No test waits, or measures how long
// it took.
#include "device/clock/Clock.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kelp::device {

using namespace std::chrono_literals;

TEST(Clock, frozenStandsStillAndMovesOnlyForwardByItsSteps)
{
    Clock clock;
    clock.setSpeed(0);
    const Time start = clock.now();

    clock.stepTo(start + 10min);
    clock.stepTo(start + 1s);

    EXPECT_EQ(clock.now(), start + 10min);
    EXPECT_TRUE(clock.isFrozen());
    EXPECT_EQ(clock.realTimeUntil(start + 11min), std::nullopt);
    EXPECT_EQ(clock.realTimeUntil(start + 10min), 0ns);
}

TEST(Clock, runningIgnoresSteps)
{
    Clock clock;

    clock.stepTo(24h);

    EXPECT_LT(clock.now(), 24h);
}

TEST(Clock, changeOfSpeedNeitherJumpsNorTurnsBack)
{
    Clock clock;
    double former = clock.speed();
    for (const double speed : {1000.0, 0.0, 0.5, 0.0, 1000.0, 1.0}) {
        const auto realBefore = std::chrono::steady_clock::now();
        const Time before = clock.now();
        clock.setSpeed(speed);
        const Time after = clock.now();
        const std::chrono::duration<double, std::nano> real = std::chrono::steady_clock::now() - realBefore;

        EXPECT_GE(after, before) << former << " to " << speed;
        EXPECT_LE(static_cast<double>((after - before).count()), real.count() * std::max(former, speed) + 1);
        while (speed > 0 && clock.now() == after) { // until it has moved away from its base
        }
        former = speed;
    }
}

TEST(Clock, realTimeIsDeviceTimeBySpeed)
{
    Clock clock;
    clock.setSpeed(0);
    const Time start = clock.now();
    clock.stepTo(start + 1s);
    clock.setSpeed(1e-9); // a second of the system is a nanosecond of the device

    EXPECT_EQ(clock.realTimeUntil(start), 0ns);
    EXPECT_GT(clock.realTimeUntil(clock.now() + 1000ns).value(), 900s);
    EXPECT_LE(clock.realTimeUntil(clock.now() + 1000ns).value(), 1000s);
    clock.setSpeed(1e-300);
    EXPECT_EQ(clock.realTimeUntil(start + 2s), Duration::max());
}

TEST(Clock, fastestTimeEndsWhereADeadlineStillFits)
{
    Clock clock;
    clock.setSpeed(1e300);
    while (clock.now() == 0ns) { // until the system's clock has moved at all
    }
    EXPECT_LE(clock.now(), Time::max() / 2);

    clock.setSpeed(0);
    clock.stepTo(Time::max());
    clock.setSpeed(1e300);

    EXPECT_EQ(clock.now(), Time::max() / 2);
    EXPECT_EQ(clock.realTimeUntil(clock.now()), 0ns);
}

} // namespace kelp::device
