// SPDX-License-Identifier: Apache-2.0
// See EventChannel.h.

#include "EventChannel.h"

#include "platform/link/Socket.h"

#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace kelp::device {

namespace {

// An option of a socket that is a number; -1 for what is no socket.
int optionOf(int descriptor, int option)
{
    int value = -1;
    socklen_t size = sizeof value;
    return ::getsockopt(descriptor, SOL_SOCKET, option, &value, &size) == 0 ? value : -1;
}

} // namespace

bool EventChannel::isSuitable(int descriptor)
{
    return optionOf(descriptor, SO_DOMAIN) == AF_UNIX && optionOf(descriptor, SO_TYPE) == SOCK_SEQPACKET;
}

EventChannel::EventChannel(EventLoop &loop, link::UniqueFd socket, std::size_t backlog, Ended ended)
    : _socket(std::move(socket)),
      _watch(loop.watch(_socket.get())),
      _outgoing(_socket.get()),
      _backlog(backlog),
      _ended(std::move(ended))
{
    _watch.onReadable([this] { onReadable(); });
}

bool EventChannel::hasClient() const
{
    pollfd socket{_socket.get(), 0, 0};
    return _isOpen && (::poll(&socket, 1, 0) <= 0 || !(socket.revents & POLLHUP));
}

void EventChannel::send(const link::Event &event)
{
    if (!_isOpen) {
        return;
    }
    if (!hasRoom(1)) {
        return end("it does not read its events");
    }
    settle(_outgoing.send(link::encode({0, event})));
}

void EventChannel::onReadable()
{
    char byte = 0;
    std::size_t length = 0;
    link::Passed passed;
    const int error = link::receiveMessage(_socket.get(), &byte, sizeof byte, length, passed, MSG_DONTWAIT);
    if (error == EAGAIN) {
        return;
    }
    const bool hasData = error == EMSGSIZE || (!error && length > 0);
    end(hasData ? "it writes to its event channel" : "");
}

void EventChannel::settle(OutgoingQueue::State state)
{
    switch (state) {
    case OutgoingQueue::State::Empty:
        return _watch.onWritable({});
    case OutgoingQueue::State::Waiting:
        return _watch.onWritable([this] { settle(_outgoing.flush()); });
    case OutgoingQueue::State::Broken:
        return end("");
    }
}

void EventChannel::end(const std::string &reason)
{
    _isOpen = false;
    _watch.end();
    _ended(reason);
}

} // namespace kelp::device
