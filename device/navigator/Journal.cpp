// SPDX-License-Identifier: Apache-2.0
// Puts results and times into words that are the same on each run, and hands the lines to the port.
#include "Journal.h"

#include <cstring>

namespace kelp::device {

namespace {

// "close-window: done", "pool: done, pool-1", "extend-timeout: EINVAL, ..."
std::string withResult(const std::string &what, const Outcome &outcome)
{
    const std::string result = outcome.error == 0 ? "done" : errorName(outcome.error);
    return what + ": " + result + (outcome.text.empty() ? "" : ", " + outcome.text);
}

} // namespace

void Journal::note(const Application &about, const std::string &text)
{
    _port.trace({_clock.now(), about.pid(), about.id(), text});
}

void Journal::noteResult(const Application &about, const std::string &what, const Outcome &outcome)
{
    note(about, withResult(what, outcome));
}

void Journal::note(const std::string &text)
{
    _port.trace({_clock.now(), 0, {}, text});
}

void Journal::noteResult(const std::string &what, const Outcome &outcome)
{
    note(withResult(what, outcome));
}

std::string errorName(int error)
{
    const char *name = strerrorname_np(error); // unlike strerror(), the same in every locale
    return name ? name : "errno " + std::to_string(error);
}

std::string secondsText(Duration duration)
{
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
    const std::string decimals = std::to_string(1000 + milliseconds % 1000).substr(1);
    return std::to_string(milliseconds / 1000) + '.' + decimals + " s";
}

} // namespace kelp::device
