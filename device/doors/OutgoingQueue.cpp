// SPDX-License-Identifier: Apache-2.0
// See OutgoingQueue.h.

#include "OutgoingQueue.h"

#include "platform/link/Socket.h"

#include <cerrno>

#include <sys/socket.h>

namespace kelp::device {

OutgoingQueue::State OutgoingQueue::send(std::string bytes)
{
    _bytes += bytes.size();
    _messages.push_back(std::move(bytes));
    return _messages.size() > 1 ? State::Waiting : flush(); // what waits already goes first
}

OutgoingQueue::State OutgoingQueue::flush()
{
    while (!_messages.empty()) {
        const int error = link::sendMessage(_socket, _messages.front(), -1, MSG_DONTWAIT);
        if (error) {
            return error == EAGAIN ? State::Waiting : State::Broken;
        }
        _bytes -= _messages.front().size();
        _messages.pop_front();
    }
    return State::Empty;
}

} // namespace kelp::device
