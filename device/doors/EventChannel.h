// SPDX-License-Identifier: Apache-2.0
// The device's end of an event channel: events go out in their order, a bounded number of unread ones waits, and
// nothing comes in but the end. A PeerProcess owns one for each of the process's threads that asked for events.
#pragma once

#include "OutgoingQueue.h"
#include "device/loop/EventLoop.h"
#include "platform/link/Message.h"
#include "platform/link/UniqueFd.h"

#include <functional>
#include <string>

namespace kelp::device {

class EventChannel
{
public:
    // Called once, when the channel has ended, from within any operation or the loop; it must not destroy the channel.
    // reason is empty when the client has closed its end.
    using Ended = std::function<void(const std::string &reason)>;

    // Whether a descriptor is a socket of the kind that a channel is made of.
    static bool isSuitable(int descriptor);

    // Throws std::system_error when the socket cannot be watched.
    EventChannel(EventLoop &loop, link::UniqueFd socket, std::size_t backlog, Ended ended);
    EventChannel(const EventChannel &) = delete;
    EventChannel &operator=(const EventChannel &) = delete;

    bool isOpen() const { return _isOpen; }
    // Open, and the client has not closed its end, which the loop hears of only later.
    bool hasClient() const;
    // One that has ended takes any number, to no effect.
    bool hasRoom(std::size_t events) const { return !_isOpen || _outgoing.messages() + events <= _backlog; }

    // Sends an event; one beyond the backlog ends the channel.
    void send(const link::Event &event);

private:
    void onReadable();
    void settle(OutgoingQueue::State state);
    void end(const std::string &reason);

    link::UniqueFd _socket;
    EventLoop::Watch _watch; // after the socket: it must end first
    OutgoingQueue _outgoing;
    std::size_t _backlog;
    Ended _ended;
    bool _isOpen = true;
};

} // namespace kelp::device
