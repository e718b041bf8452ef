// SPDX-License-Identifier: Apache-2.0
// An application's process as the socket door knows it: the process itself and its event channels. The door owns one
// for each connection of an application.
#pragma once

#include "EventChannel.h"
#include "device/navigator/Navigator.h"
#include "device/process/ProcessHandle.h"

#include <map>

namespace kelp::device {

class PeerProcess
{
public:
    // ended is called, once, when the process has ended; it must not destroy the PeerProcess.
    // Throws std::system_error when the process cannot be watched.
    PeerProcess(EventLoop &loop, ProcessHandle handle, const EventLoop::Callback &ended);
    PeerProcess(const PeerProcess &) = delete;
    PeerProcess &operator=(const PeerProcess &) = delete;

    pid_t pid() const { return _handle.pid(); }
    void signal(int number) const;

    std::size_t channels() const { return _channels.size(); }
    // Throws std::system_error when the socket cannot be watched.
    void openChannel(ChannelId id, link::UniqueFd socket, std::size_t backlog,
                     const EventChannel::Ended &ended);
    // Lets the channels go that have ended.
    void dropEndedChannels();

    void send(const link::Event &event);
    void sendTo(ChannelId channel, const link::Event &event); // of no effect where it has no such channel
    bool takesEvents() const;                                 // on one channel at least
    bool hasRoom(std::size_t events) const;

private:
    EventLoop &_loop;
    ProcessHandle _handle;
    EventLoop::Watch _watch; // of the process's end
    std::map<ChannelId, EventChannel> _channels;
};

} // namespace kelp::device
