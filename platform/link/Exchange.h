// SPDX-License-Identifier: Apache-2.0
// A client's message and the device's answer to it, over a connection that blocks.
#pragma once

#include "Message.h"
#include "Socket.h"

#include <chrono>
#include <span>

namespace kelp::link {

// The time that a client gives the device to answer, signals and all.
inline constexpr std::chrono::seconds ANSWER_TIME{10};

// Sends a message with a serial and descriptors, and waits for its answer, whose parts it puts together. Returns 0 and
// sets reply and the descriptors that came with it; otherwise one of
//   EAGAIN      the device has not answered within ANSWER_TIME,
//   ECONNRESET  the device has closed the connection,
//   EPROTO      what came is no answer to this message.
// After a failure the two ends are out of step: the connection is of no more use.
int exchange(int connection, std::uint32_t serial, Body body, std::span<const int> passed, Reply &reply,
             Passed &received);

} // namespace kelp::link
