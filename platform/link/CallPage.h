// SPDX-License-Identifier: Apache-2.0
// One write at a time from a client to the device, in memory that both share: what the socket could carry too, for a
// fraction of its price. The client fills the page, rings the device's doorbell (an eventfd) and sleeps until the
// device has answered.
#pragma once

#include "SharedMemory.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kelp::link {

class CallPage
{
public:
    CallPage() = default;
    explicit CallPage(SharedMemory memory) : _memory(std::move(memory)) {}

    static std::size_t sizeFor(std::size_t textBytes);
    std::size_t textBytes() const; // the longest text of one write
    explicit operator bool() const { return _memory.data() != nullptr; }

    // ---- The client ----

    // Asks for a text of at most textBytes to be written to a descriptor of the device. The doorbell comes next.
    void ask(std::uint32_t descriptor, std::string_view text);
    // Waits for the answer for at most that long. True: status is 0 or an errno.
    bool awaitAnswer(std::chrono::nanoseconds longest, int &status);

    // ---- The device ----

    // Whether something has been asked for; sets descriptor and text, a copy that the client cannot change any more.
    bool takeAsked(std::uint32_t &descriptor, std::string &text);
    // woken: how many readers are about to run because of the write.
    void answer(int status, std::size_t woken);

private:
    struct Head;
    Head &head() const;
    char *text() const;
    std::uint32_t sleepUntilAnswered(std::chrono::steady_clock::time_point end);

    SharedMemory _memory;
};

} // namespace kelp::link
