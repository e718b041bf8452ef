// SPDX-License-Identifier: Apache-2.0
// One client's connection: bytes in, a checked message to the door, the door's answer out. It knows the order in which
// messages may come and nothing of what they mean. The socket door owns all of them.
#pragma once

#include "OutgoingQueue.h"
#include "device/loop/EventLoop.h"
#include "device/navigator/Navigator.h"
#include "platform/link/Message.h"
#include "platform/link/UniqueFd.h"

#include <span>
#include <string>

#include <sys/socket.h>

namespace kelp::device {

class Connection;

// What a connection hands its messages to. None of these may destroy the connection.
class ConnectionOwner
{
public:
    virtual ~ConnectionOwner() = default;
    // Room to receive one message in, used for no longer than it takes to decode it.
    virtual std::span<char> buffer() = 0;
    // Whether the client may stay; with an error it is told so and loses the connection.
    virtual Outcome admit(Connection &connection, const link::Hello &hello) = 0;
    virtual Outcome request(Connection &connection, const link::Request &request) = 0;
    virtual Outcome command(const link::Command &command) = 0;
    // A message about publish/subscribe objects. Sets what is to be passed with the answer.
    virtual Outcome objects(Connection &connection, const link::Body &body, link::Passed &passed) = 0;
    // Answers by itself, with Connection::reply().
    virtual void openEvents(Connection &connection, std::uint32_t serial, link::UniqueFd channel) = 0;
    // The connection has closed itself: to be destroyed later. reason is empty when the client has ended it.
    virtual void closed(Connection &connection, const std::string &reason) = 0;
};

class Connection
{
public:
    // Throws std::system_error when the socket cannot be watched.
    Connection(EventLoop &loop, link::UniqueFd socket, std::size_t replyBacklogBytes, ConnectionOwner &owner);
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    bool isOpen() const { return _isOpen; }
    bool isAdmitted() const { return _isAdmitted; }
    int descriptor() const { return _socket.get(); }
    ucred peer() const; // who connected; a pid of 0 and nobody's ids where that cannot be told

    // The application process that the connection belongs to; 0: none.
    ProcessId process() const { return _process; }
    void setProcess(ProcessId process) { _process = process; }

    // Answers a message. A client that leaves too many answers unread loses its connection.
    void reply(std::uint32_t serial, const Outcome &outcome, link::Passed passed = {});

    // Ends the connection for the client, at once. What is unread or unsent is lost.
    void close(const std::string &reason);

private:
    void onReadable();
    bool receiveOne();
    void accept(const link::Message &message, link::Passed passed);
    void acceptFromApplication(const link::Message &message, link::Passed passed);
    void greet(std::uint32_t serial, const link::Hello &hello);
    void settle(OutgoingQueue::State state);

    link::UniqueFd _socket;
    EventLoop::Watch _watch; // after the socket: it must end first
    OutgoingQueue _outgoing;
    std::size_t _replyBacklogBytes;
    ConnectionOwner &_owner;
    link::Role _role = link::Role::Application; // once admitted
    ProcessId _process = 0;
    bool _isOpen = true;
    bool _isAdmitted = false;
};

} // namespace kelp::device
