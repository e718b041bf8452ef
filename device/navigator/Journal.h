// SPDX-License-Identifier: Apache-2.0
// Writes the navigator's trace: one line for each event, request, command and decision, with the device's
// time. The same inputs give the same lines.
#pragma once

#include "Application.h"

namespace kelp::device {

class Journal
{
public:
    Journal(const Clock &clock, NavigatorPort &port) : _clock(clock), _port(port) {}

    // About a process.
    void note(const Application &about, const std::string &text);
    void noteResult(const Application &about, const std::string &what, const Outcome &outcome);

    // About the device itself.
    void note(const std::string &text);
    void noteResult(const std::string &what, const Outcome &outcome);

private:
    const Clock &_clock;
    NavigatorPort &_port;
};

// An errno as its name, such as "EINVAL".
std::string errorName(int error);

// Seconds with three decimals, such as "2.500 s".
std::string secondsText(Duration duration);

} // namespace kelp::device
