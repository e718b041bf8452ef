// SPDX-License-Identifier: Apache-2.0
// How large a PPS object can be, as the service says when the library is loaded.
#pragma once

namespace kelp {

// The largest object in bytes: the size of the buffer for a read. Set once, before main().
extern int PPS_MAX_SIZE;

// Asks the service; 32768 where there is none or its answer is of no use.
int askPpsMaxSize();

} // namespace kelp
