// SPDX-License-Identifier: Apache-2.0
// Turns work over to a daemon, and waits to hear from it how its start went.
#pragma once

#include <functional>
#include <optional>

namespace kelp::tool {

// The daemon's work: calls ready() once it has started and returns its exit code; throws what keeps it from starting.
using DaemonBody = std::function<int(const std::function<void()> &ready)>;

// Runs body in a process of its own: in a session of its own, in "/", with nothing open but /dev/null.
// Returns nothing, here, once the daemon is ready, and body's exit code in the daemon, which then just ends.
// Throws Failure, here: EXIT_REFUSED with the reason why it is not, or EXIT_TIME_OUT when it keeps silent.
std::optional<int> runAsDaemon(const DaemonBody &body);

} // namespace kelp::tool
