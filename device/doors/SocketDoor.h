// SPDX-License-Identifier: Apache-2.0
// The device's door for the applications and commands of its own user: a socket in the device's directory. It lets
// clients in, within its limits, turns their messages into calls of the navigator and of the object door, and carries the navigator's events
// and signals to the processes that they are for. A bad client loses its connection and harms nobody else.
#pragma once

#include "Connection.h"
#include "DoorLimits.h"
#include "Listener.h"
#include "ObjectDoor.h"
#include "PeerProcess.h"
#include "device/loop/EventLoop.h"
#include "device/navigator/Navigator.h"

#include <functional>
#include <list>
#include <map>
#include <string>
#include <vector>

namespace kelp::device {

class SocketDoor : private ConnectionOwner
{
public:
    // What the door hands on to, beside the navigator.
    struct Services {
        std::function<Outcome(const link::Command &)> command;
        std::function<void(pid_t, const std::string &)> trace;
    };

    // Listens in a device's directory. Throws std::system_error.
    SocketDoor(EventLoop &loop, Navigator &navigator, ObjectDoor &objects, const std::string &directory,
               const DoorLimits &limits, Services services);

    // As in NavigatorPort. What is for a process or channel that has gone is dropped.
    void send(ProcessId process, const link::Event &event);
    void sendTo(ChannelId channel, const link::Event &event);
    bool takesEvents(ProcessId process) const;
    bool hasRoom(ProcessId process, std::size_t events) const;
    void signal(ProcessId process, int number) const;

    // Signals every process that is connected as an application.
    void signalAll(int number) const;

    // From now on only commands are let in: the device shuts down.
    void refuseApplications() { _refusesApplications = true; }

    // Lets go what has ended since the last call, and tells the navigator; to be called before each wait of the loop.
    // Nothing is destroyed at any other time, so that no callback loses the object that it belongs to.
    void sweep();

private:
    std::span<char> buffer() override { return _buffer; }
    Outcome admit(Connection &connection, const link::Hello &hello) override;
    Outcome request(Connection &connection, const link::Request &request) override;
    Outcome command(const link::Command &command) override { return _services.command(command); }
    Outcome objects(Connection &connection, const link::Body &body, link::Passed &passed) override;
    void openEvents(Connection &connection, std::uint32_t serial, link::UniqueFd channel) override;
    void closed(Connection &connection, const std::string &reason) override;

    void accept(link::UniqueFd socket);
    void closeOldestSilent();
    Outcome admitApplication(Connection &connection);
    Outcome addChannel(PeerProcess &process, ChannelId id, link::UniqueFd channel);
    void drop(const Connection &connection);

    EventLoop &_loop;
    Navigator &_navigator;
    ObjectDoor &_objects;
    DoorLimits _limits;
    Services _services;
    std::vector<char> _buffer;
    std::list<Connection> _connections; // the oldest first
    std::map<ProcessId, PeerProcess> _processes;
    ChannelId _lastChannel = 0;
    bool _needsSweep = false;
    bool _refusesApplications = false;
    Listener _listener; // last: it is the first to end
};

} // namespace kelp::device
