// SPDX-License-Identifier: Apache-2.0
// The process's one connection to the device, on which every request travels. It connects when it is first needed,
// and anew when the device has gone.
#pragma once

#include "platform/link/CallPage.h"
#include "platform/link/Message.h"
#include "platform/link/Socket.h"
#include "platform/link/UniqueFd.h"

#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

namespace kelp::platform {

class DeviceConnection
{
public:
    // Tells one connection of the process from the next: what the device has given is good on that connection only.
    using Generation = std::uint64_t;
    static constexpr Generation ANY = 0;

    struct Answer {
        std::string text;
        link::Passed passed; // descriptors that came with it
        Generation generation = ANY;
    };

    // The one of the process, a new one in the child of a fork().
    static DeviceConnection &instance();

    // Sends a message with descriptors and waits for its answer: one thread at a time. Returns the answer's status, or
    // one of the errors that navigator.h tells of every request, ECONNRESET also where the connection is not, or no
    // longer, that of the generation.
    int ask(const link::Body &body, Answer &answer, std::span<const int> passed = {},
            Generation generation = ANY);

    // Writes a text to an open object, which is of that generation; errors as ask(), and EMSGSIZE.
    int write(Generation generation, std::uint32_t descriptor, std::string_view text);

private:
    int connect();
    int openCalls();
    int awaitAnswer();
    int exchange(const link::Body &body, std::span<const int> passed, link::Reply &reply,
                 link::Passed &received);
    bool hasGone() const;
    int lost(int error);

    std::mutex _mutex; // guards the rest, and the socket's turn of one request and its answer
    link::UniqueFd _socket;
    link::CallPage _calls; // for writes, opened by the first
    link::UniqueFd _doorbell;
    Generation _generation = ANY; // of the present or last connection
    std::uint32_t _serial = 0;    // of the last message
};

} // namespace kelp::platform
