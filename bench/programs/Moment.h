// SPDX-License-Identifier: Apache-2.0
// How the receivers of the delivery benchmark report that an event has arrived.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>

#include <unistd.h>

namespace kelp::bench {

// Writes the present moment of the monotonic clock to the standard output. Ends the process when nobody reads
// it.
inline void reportMoment()
{
    const std::int64_t moment =
        std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    if (::write(STDOUT_FILENO, &moment, sizeof moment) != sizeof moment) {
        std::_Exit(1);
    }
}

} // namespace kelp::bench
