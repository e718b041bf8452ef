// SPDX-License-Identifier: Apache-2.0
// The device's listening socket: takes in whoever connects, if it is the device's own user. The socket door owns it.
#pragma once

#include "device/loop/EventLoop.h"
#include "platform/link/UniqueFd.h"

#include <functional>
#include <string>

#include <sys/socket.h>

namespace kelp::device {

class Listener
{
public:
    using Accepted = std::function<void(link::UniqueFd connection)>;
    using Refused = std::function<void(const ucred &peer)>; // a connection of another user, closed already

    // Listens in a device's directory. Throws std::system_error.
    Listener(EventLoop &loop, const std::string &directory, Accepted accepted, Refused refused);
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

private:
    void onReadable();
    void examine(link::UniqueFd connection);
    void turnAwayOne();

    Accepted _accepted;
    Refused _refused;
    link::UniqueFd _socket;
    link::UniqueFd _spare;   // a descriptor kept for turning clients away when there is no other
    EventLoop::Watch _watch; // after the socket: it must end first
};

} // namespace kelp::device
