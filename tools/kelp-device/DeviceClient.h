// SPDX-License-Identifier: Apache-2.0
// The command line's end of the device's socket: asks a running device to carry out commands.
#pragma once

#include "platform/link/Message.h"
#include "platform/link/UniqueFd.h"

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace kelp::tool {

class DeviceClient
{
public:
    using Arguments = std::vector<std::pair<std::string, std::string>>;

    // Connects to the device in a directory. Throws Failure: EXIT_NO_DEVICE with what is wrong there, EXIT_TIME_OUT,
    // or EXIT_REFUSED.
    explicit DeviceClient(const std::string &directory);

    // Asks and returns the answer's text. Throws Failure: EXIT_REFUSED with the device's reason, EXIT_TIME_OUT, or
    // EXIT_NO_DEVICE when the device goes away.
    std::string ask(const std::string &verb, Arguments arguments = {});

    // Waits until the device has ended and left its directory: true, or false when the time is up.
    bool endsWithin(std::chrono::milliseconds timeout) const;

    // The same, but throws Failure, EXIT_TIME_OUT, when the time is up.
    void awaitEnd(std::chrono::milliseconds timeout) const;

private:
    std::string exchange(link::Body body);
    [[noreturn]] void fail(int error) const;

    std::string _directory;
    link::UniqueFd _socket;
    std::uint32_t _serial = 0;
};

} // namespace kelp::tool
