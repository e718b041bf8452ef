// SPDX-License-Identifier: Apache-2.0
// See OutgoingQueue.h.

#include "OutgoingQueue.h"

#include <cerrno>

#include <sys/socket.h>

namespace kelp::device {

OutgoingQueue::State OutgoingQueue::send(std::string bytes, link::Passed passed)
{
    _bytes += bytes.size();
    _messages.push_back({std::move(bytes), std::move(passed)});
    return _messages.size() > 1 ? State::Waiting : flush(); // what waits already goes first
}

OutgoingQueue::State OutgoingQueue::flush()
{
    while (!_messages.empty()) {
        const Message &next = _messages.front();
        std::vector<int> passed;
        for (const link::UniqueFd &descriptor : next.passed) {
            passed.push_back(descriptor.get());
        }
        if (const int error = link::sendMessage(_socket, next.bytes, passed, MSG_DONTWAIT)) {
            return error == EAGAIN ? State::Waiting : State::Broken;
        }
        _bytes -= next.bytes.size();
        _messages.pop_front();
    }
    return State::Empty;
}

} // namespace kelp::device
