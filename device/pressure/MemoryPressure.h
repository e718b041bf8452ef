// SPDX-License-Identifier: Apache-2.0
// Follows the kernel's memory-pressure figures and says when the severity that they come to changes. It reads them once
// a second of the device's clock, so that a clock that stands still brings no news. The Device owns one, where it was
// asked for, and calls step() before each wait.
#pragma once

#include "PressureFigures.h"
#include "device/clock/Clock.h"

#include <functional>
#include <string>

namespace kelp::device {

class MemoryPressure
{
public:
    // Of the whole system; a control group has a file of its own in the same format, named memory.pressure.
    static constexpr char SYSTEM_FILE[] = "/proc/pressure/memory";

    struct Listener {
        std::function<void(int)> changed; // the severity, first whatever it is, then each other one
        std::function<void(const std::string &)> note; // a line for the trace
    };

    // Throws std::runtime_error, with what to do, when the file gives no figures.
    MemoryPressure(const Clock &clock, std::string path, Listener listener);

    // Reads the figures, if it is time to. A file that gives none any more is noted once and brings no news.
    void step();

    Time nextDeadline() const { return _nextReading; }

private:
    std::optional<PressureFigures> read(std::string &problem) const;

    const Clock &_clock;
    std::string _path;
    Listener _listener;
    Time _nextReading;
    std::optional<int> _severity; // nothing: not told yet
    bool _isLost = false;         // the last reading failed, and that has been noted
};

} // namespace kelp::device
