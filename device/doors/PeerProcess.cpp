// SPDX-License-Identifier: Apache-2.0
// See PeerProcess.h.

#include "PeerProcess.h"

#include <algorithm>
#include <tuple>

namespace kelp::device {

PeerProcess::PeerProcess(EventLoop &loop, ProcessHandle handle, const EventLoop::Callback &ended)
    : _loop(loop),
      _handle(std::move(handle))
{
    if (_handle.descriptor() < 0) {
        return; // the end of its connection must do
    }
    _watch = loop.watch(_handle.descriptor());
    _watch.onReadable([this, ended] {
        _watch.end(); // it would be readable for ever
        ended();
    });
}

void PeerProcess::signal(int number) const
{
    (void)_handle.signal(number); // a process that has ended, or cannot be reached, needs none
}

void PeerProcess::openChannel(ChannelId id, link::UniqueFd socket, std::size_t backlog,
                              const EventChannel::Ended &ended)
{
    _channels.emplace(std::piecewise_construct, std::forward_as_tuple(id),
                      std::forward_as_tuple(_loop, std::move(socket), backlog, ended));
}

void PeerProcess::dropEndedChannels()
{
    std::erase_if(_channels, [](const auto &entry) { return !entry.second.isOpen(); });
}

void PeerProcess::send(const link::Event &event)
{
    for (auto &[id, channel] : _channels) {
        channel.send(event);
    }
}

void PeerProcess::sendTo(ChannelId channel, const link::Event &event)
{
    if (const auto found = _channels.find(channel); found != _channels.end()) {
        found->second.send(event);
    }
}

bool PeerProcess::takesEvents() const
{
    return std::any_of(_channels.begin(), _channels.end(),
                       [](const auto &entry) { return entry.second.hasClient(); });
}

bool PeerProcess::hasRoom(std::size_t events) const
{
    return _channels.empty() || std::any_of(_channels.begin(), _channels.end(), [events](const auto &entry) {
               return entry.second.hasRoom(events);
           });
}

} // namespace kelp::device
