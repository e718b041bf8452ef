// SPDX-License-Identifier: Apache-2.0
// What clients may take up of the device. Past a bound the client at fault is refused or loses its connection.
#pragma once

#include <cstddef>

namespace kelp::device {

struct DoorLimits {
    std::size_t connections = 256;            // that have said hello
    std::size_t channelsPerProcess = 64;      // event channels
    std::size_t descriptorsPerProcess = 1024; // of publish/subscribe objects
    std::size_t eventBacklog = 1024;          // unread events of one channel, beside what its socket holds
    std::size_t replyBacklogBytes = 1 << 20; // unread replies of one connection, beside what its socket holds
};

} // namespace kelp::device
