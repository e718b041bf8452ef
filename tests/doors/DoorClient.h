// SPDX-License-Identifier: Apache-2.0
// A client of the device's socket for tests: it can keep the protocol, and break it. Every wait ends after
// WAIT_TIME with an exception.
#pragma once

#include "platform/link/Message.h"
#include "platform/link/Socket.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace kelp::test {

inline constexpr std::chrono::seconds WAIT_TIME{60}; // far beyond what a slow machine needs

class DoorClient
{
public:
    explicit DoorClient(const std::string &directory);         // connects and says nothing
    DoorClient(const std::string &directory, link::Role role); // connects and is admitted

    // Sends one message, or bytes that need not be one. Returns 0, or an errno: EPIPE when the device has closed.
    int send(link::Body body, int passed = -1);
    int sendBytes(std::string_view bytes, int passed = -1);

    // One answer; nothing when the device has closed the connection.
    std::optional<link::Reply> receive();

    // Sends, and returns the answer with the text of all its parts.
    link::Reply ask(link::Body body, int passed = -1);
    link::Reply command(const std::string &name,
                        std::vector<std::pair<std::string, std::string>> arguments = {});

    // Opens an event channel and returns this end of it.
    link::UniqueFd openEvents();

    int descriptor() const { return _socket.get(); }

private:
    link::UniqueFd _socket;
    std::uint32_t _serial = 0;
};

// The next event of a channel; nothing when the device has closed it.
std::optional<link::Event> nextEvent(int channel);

// The next event with that code, which a channel must bring.
link::Event awaitEvent(int channel, int code);

// Calls until it holds; throws when it does not within WAIT_TIME. For what nothing can be waited on.
template <typename Condition>
void eventually(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + WAIT_TIME;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("what was waited for did not happen");
        }
        (void)::sched_yield(); // cannot fail
    }
}

} // namespace kelp::test
