// SPDX-License-Identifier: Apache-2.0
// The moments at which the navigator acts by itself, in their order. Plain data: who sets one handles it when
// it is taken, and whoever asks sees what is pending.
#pragma once

#include "Navigator.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelp::device {

enum class DeadlineKind {
    Terminate,        // the grace after the exit event is over
    Kill,             // the process has had its SIGTERM
    Pool,             // the answer to a pooling is due
    OrientationCheck, // the answer whether the screen may turn is due
    OrientationDone,  // the application should have followed the screen
};

struct Deadline {
    Time moment{0};
    ProcessId process = 0;
    DeadlineKind kind = DeadlineKind::Terminate;
    std::string id; // of the request that is awaited, or empty
};

class Deadlines
{
public:
    // Replaces the pending one of the same process, kind and id. Those of one moment keep the order of their
    // setting.
    void set(const Deadline &deadline);
    bool remove(ProcessId process, DeadlineKind kind, std::string_view id); // false: there was none
    void removeAll(ProcessId process);

    std::optional<Time> momentOf(ProcessId process, DeadlineKind kind) const;
    std::size_t count(ProcessId process, DeadlineKind kind) const;
    std::optional<Time> next() const;

    // Takes the earliest, if the moment has reached it.
    std::optional<Deadline> takeDue(Time now);

    // Those of a process as others see them.
    std::vector<DeadlineState> describe(ProcessId process, Time now) const;

private:
    std::vector<Deadline> _pending; // by their moments
};

} // namespace kelp::device
