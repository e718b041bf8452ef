// SPDX-License-Identifier: Apache-2.0
// Messages on their way out through a socket that may be full: sent at once where that is possible, else kept in their
// order. Connection and EventChannel own one each, watch the socket for it and keep its bound.
#pragma once

#include "platform/link/Socket.h"

#include <cstddef>
#include <deque>
#include <string>

namespace kelp::device {

class OutgoingQueue
{
public:
    enum class State {
        Empty,   // all has been sent
        Waiting, // call flush() when the socket is writable
        Broken,  // the socket takes nothing any more
    };

    explicit OutgoingQueue(int socket) : _socket(socket) {}

    // Descriptors go with the message and are closed then.
    State send(std::string bytes, link::Passed passed = {});
    State flush();

    std::size_t messages() const { return _messages.size(); }
    std::size_t bytes() const { return _bytes; }

private:
    struct Message {
        std::string bytes;
        link::Passed passed;
    };

    int _socket; // the owner's
    std::deque<Message> _messages;
    std::size_t _bytes = 0; // in _messages
};

} // namespace kelp::device
