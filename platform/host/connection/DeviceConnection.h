// SPDX-License-Identifier: Apache-2.0
// The process's one connection to the device, on which every request travels. It connects when it is first needed,
// and anew when the device has gone.
#pragma once

#include "platform/link/Message.h"
#include "platform/link/UniqueFd.h"

#include <mutex>
#include <string>

namespace kelp::platform {

class DeviceConnection
{
public:
    // The one of the process, a new one in the child of a fork().
    static DeviceConnection &instance();

    // Sends a message, with a descriptor unless passed is -1, and waits for its answer: one thread at a time.
    // Returns the answer's status and sets text to its text, or returns one of the errors that navigator.h tells of
    // every request, with an empty text.
    int ask(const link::Body &body, std::string &text, int passed = -1);

private:
    int connect();
    int exchange(const link::Body &body, int passed, link::Reply &reply);
    bool hasGone() const;
    int lost(int error);

    std::mutex _mutex; // guards the rest, and the socket's turn of one request and its answer
    link::UniqueFd _socket;
    std::uint32_t _serial = 0; // of the last message
};

} // namespace kelp::platform
