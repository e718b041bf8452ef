// SPDX-License-Identifier: Apache-2.0
// Device time is a base moment plus the system's time since then, scaled by the speed. Each change of the
// speed takes a new base, so that device time neither jumps nor runs backwards.
#include "Clock.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace kelp::device {

namespace {

using std::chrono::steady_clock;

// Where device time stops, however fast it runs: 146 years, so that a deadline set then still fits its type.
constexpr Time LATEST = Time::max() / 2;

// A count of nanoseconds as a duration, at most a bound.
Duration bounded(double nanoseconds, Duration most)
{
    if (nanoseconds >= static_cast<double>(most.count())) {
        return most;
    }
    return Duration(static_cast<Duration::rep>(nanoseconds));
}

} // namespace

Clock::Clock() : _realBase(steady_clock::now()) {}

Time Clock::now() const
{
    if (isFrozen()) {
        return _base;
    }
    const Duration elapsed = steady_clock::now() - _realBase;
    return _base + bounded(static_cast<double>(elapsed.count()) * _speed, LATEST - _base);
}

void Clock::setSpeed(double speed)
{
    assert(speed >= 0);
    _base = now();
    _realBase = steady_clock::now();
    _speed = speed;
}

void Clock::stepTo(Time moment)
{
    if (isFrozen()) {
        _base = std::max(_base, std::min(moment, LATEST));
    }
}

std::optional<Duration> Clock::realTimeUntil(Time moment) const
{
    const Duration remaining = moment - now();
    if (remaining <= Duration::zero()) {
        return Duration::zero();
    }
    if (isFrozen()) {
        return std::nullopt;
    }
    // Rounded up: who waits that long must not wake just before the moment.
    return bounded(std::ceil(static_cast<double>(remaining.count()) / _speed), Duration::max());
}

} // namespace kelp::device
