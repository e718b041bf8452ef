// SPDX-License-Identifier: Apache-2.0
// A client's message and the device's answer to it, over a connection that blocks.
#pragma once

#include "Message.h"

namespace kelp::link {

// Sends a message with a serial, and with a descriptor unless passed is -1, and waits for its answer, whose parts it
// puts together. Returns 0 and sets reply; otherwise one of
//   EAGAIN      the connection's limit of waiting has passed,
//   ECONNRESET  the device has closed the connection,
//   EPROTO      what came is no answer to this message.
// After a failure the two ends are out of step: the connection is of no more use.
int exchange(int connection, std::uint32_t serial, Body body, int passed, Reply &reply);

} // namespace kelp::link
