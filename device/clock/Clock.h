// SPDX-License-Identifier: Apache-2.0
// The device's one clock. Every deadline of the device is a moment of it, and nothing else in the device reads the
// system's clocks, so a test (or a person) freezes it, steps it or runs it fast and gets the same trace each time.
#pragma once

#include <chrono>
#include <optional>

namespace kelp::device {

using Duration = std::chrono::nanoseconds;
using Time = std::chrono::nanoseconds; // since the device's start, in the device's own time

class Clock
{
public:
    // Starts at 0 and runs at the system's speed.
    Clock();

    Time now() const;

    bool isFrozen() const { return _speed == 0; }
    double speed() const { return _speed; }

    // From now on device time passes speed times as fast as the system's; 0 freezes it. speed must not be negative.
    void setSpeed(double speed);

    // Moves a frozen clock forward to a moment; a moment that has passed changes nothing.
    void stepTo(Time moment);

    // The system's time until a moment of the device is reached: 0 where it has passed, nothing while frozen.
    std::optional<Duration> realTimeUntil(Time moment) const;

private:
    Time _base{0};                                   // device time at _realBase
    std::chrono::steady_clock::time_point _realBase; // when _base was taken
    double _speed = 1;
};

} // namespace kelp::device
