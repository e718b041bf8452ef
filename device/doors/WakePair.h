// SPDX-License-Identifier: Apache-2.0
// What makes a client's descriptor readable: a byte, written here, while there is something to read for it. The client's
// end hangs up with the device, and the device's end with the client.
#pragma once

#include "platform/link/UniqueFd.h"

namespace kelp::device {

struct WakePair {
    link::UniqueFd device;
    link::UniqueFd client;
};

// Both ends do not block. A pipe, which is the cheapest; or for a client that also writes a socket pair, whose ends are
// writable too. Returns 0 and sets pair, or an errno.
int makeWakePair(bool clientWrites, WakePair &pair);

// Writes the byte. A client that has closed its end does not get it, which the hang-up tells. SIGPIPE must be blocked.
void wake(const link::UniqueFd &end);

} // namespace kelp::device
