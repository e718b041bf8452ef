// SPDX-License-Identifier: Apache-2.0
// See SocketDoor.h.

#include "SocketDoor.h"

#include "platform/link/Limits.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <tuple>

namespace kelp::device {

SocketDoor::SocketDoor(EventLoop &loop, Navigator &navigator, ObjectDoor &objects,
                       const std::string &directory, const DoorLimits &limits, Services services)
    : _loop(loop),
      _navigator(navigator),
      _objects(objects),
      _limits(limits),
      _services(std::move(services)),
      _buffer(link::MAX_MESSAGE_BYTES),
      _listener(
          loop, directory, [this](link::UniqueFd socket) { accept(std::move(socket)); },
          [this](const ucred &peer) {
              _services.trace(peer.pid,
                              "connection refused: of another user (uid " + std::to_string(peer.uid) + ")");
          })
{}

void SocketDoor::send(ProcessId process, const link::Event &event)
{
    if (const auto found = _processes.find(process); found != _processes.end()) {
        found->second.send(event);
    }
}

void SocketDoor::sendTo(ChannelId channel, const link::Event &event)
{
    for (auto &[id, process] : _processes) {
        process.sendTo(channel, event);
    }
}

bool SocketDoor::takesEvents(ProcessId process) const
{
    const auto found = _processes.find(process);
    return found != _processes.end() && found->second.takesEvents();
}

bool SocketDoor::hasRoom(ProcessId process, std::size_t events) const
{
    const auto found = _processes.find(process);
    return found == _processes.end() || found->second.hasRoom(events);
}

void SocketDoor::signal(ProcessId process, int number) const
{
    if (const auto found = _processes.find(process); found != _processes.end()) {
        found->second.signal(number);
    }
}

void SocketDoor::signalAll(int number) const
{
    for (const auto &[id, process] : _processes) {
        process.signal(number);
    }
}

void SocketDoor::accept(link::UniqueFd socket)
{
    ConnectionOwner &owner = *this;
    try {
        _connections.emplace_back(_loop, std::move(socket), _limits.replyBacklogBytes, owner);
    } catch (const std::system_error &error) {
        return _services.trace(0, std::string("connection refused: ") + error.what());
    }
    // One more than may stay is let in, so that it can be told why it may not.
    const auto open =
        std::count_if(_connections.begin(), _connections.end(), [](const auto &one) { return one.isOpen(); });
    if (static_cast<std::size_t>(open) > _limits.connections) {
        closeOldestSilent();
    }
}

// Makes room at the expense of a client that has said nothing; the youngest has only just come.
void SocketDoor::closeOldestSilent()
{
    const auto youngest = std::prev(_connections.end());
    const auto silent = std::find_if(_connections.begin(), youngest,
                                     [](const auto &one) { return one.isOpen() && !one.isAdmitted(); });
    if (silent != youngest) {
        silent->close("it says nothing, and others wait");
    }
}

Outcome SocketDoor::admit(Connection &connection, const link::Hello &hello)
{
    if (hello.version != link::PROTOCOL_VERSION) {
        return {EPROTO, "the device speaks version " + std::to_string(link::PROTOCOL_VERSION) +
                            " of the protocol and the client version " + std::to_string(hello.version) +
                            ": use the same release of both"};
    }
    const auto admitted = std::count_if(_connections.begin(), _connections.end(),
                                        [](const auto &one) { return one.isOpen() && one.isAdmitted(); });
    if (static_cast<std::size_t>(admitted) >= _limits.connections) {
        return {EMFILE,
                "the device has " + std::to_string(admitted) + " clients, its limit: end some of them first"};
    }
    return hello.role == link::Role::Application ? admitApplication(connection) : Outcome();
}

Outcome SocketDoor::admitApplication(Connection &connection)
{
    if (_refusesApplications) {
        return {ENOTCONN, "the device is shutting down: start another"};
    }
    ProcessHandle handle;
    if (const int error = ProcessHandle::ofPeer(connection.descriptor(), handle)) {
        return {error, std::string("the client's process cannot be followed: ") +
                           std::generic_category().message(error)};
    }
    const pid_t pid = handle.pid();
    const std::string name = handle.programName();
    const ProcessId process = _navigator.connected(pid, name);
    connection.setProcess(process);
    try {
        _processes.emplace(
            std::piecewise_construct, std::forward_as_tuple(process),
            std::forward_as_tuple(_loop, std::move(handle), [&connection] { connection.close(""); }));
    } catch (const std::system_error &error) {
        return {error.code().value(),
                std::string("the client's process cannot be followed: ") + error.what()};
    }
    return {};
}

Outcome SocketDoor::request(Connection &connection, const link::Request &request)
{
    return _navigator.request(connection.process(), request);
}

Outcome SocketDoor::objects(Connection &connection, const link::Body &body, link::Passed &passed)
{
    return _objects.handle(connection.process(), connection.peer(), body, passed);
}

void SocketDoor::openEvents(Connection &connection, std::uint32_t serial, link::UniqueFd channel)
{
    const auto process = _processes.find(connection.process());
    if (process == _processes.end()) {
        return connection.reply(serial, {ESRCH, "the client's process has ended"});
    }
    const ChannelId id = ++_lastChannel;
    const Outcome outcome = addChannel(process->second, id, std::move(channel));
    connection.reply(serial, outcome); // before the first event: the client reads them in this order
    if (!outcome.error && connection.isOpen()) {
        _navigator.openedEvents(connection.process(), id);
    }
}

Outcome SocketDoor::addChannel(PeerProcess &process, ChannelId id, link::UniqueFd channel)
{
    if (!channel || !EventChannel::isSuitable(channel.get())) {
        return {EINVAL, "an event channel is one end of a SOCK_SEQPACKET socket pair: pass that"};
    }
    if (process.channels() >= _limits.channelsPerProcess) {
        return {EMFILE, "the process has " + std::to_string(process.channels()) +
                            " event channels, its limit: close some of them first"};
    }
    const pid_t pid = process.pid();
    const auto ended = [this, pid](const std::string &reason) {
        _needsSweep = true;
        if (!reason.empty()) {
            _services.trace(pid, "event channel closed: " + reason);
        }
    };
    try {
        process.openChannel(id, std::move(channel), _limits.eventBacklog, ended);
    } catch (const std::system_error &error) {
        return {error.code().value(), error.what()};
    }
    return {};
}

void SocketDoor::closed(Connection &connection, const std::string &reason)
{
    _needsSweep = true;
    if (!reason.empty()) {
        _services.trace(connection.peer().pid, "connection closed: " + reason);
    }
}

void SocketDoor::sweep()
{
    while (_needsSweep) { // what the navigator does about one that has gone can end another
        _needsSweep = false;
        for (auto &[id, process] : _processes) {
            process.dropEndedChannels();
        }
        std::list<Connection> gone;
        for (auto next = _connections.begin(); next != _connections.end();) {
            const auto connection = next++;
            if (!connection->isOpen()) {
                gone.splice(gone.end(), _connections, connection);
            }
        }
        for (const Connection &connection : gone) {
            drop(connection);
        }
    }
}

void SocketDoor::drop(const Connection &connection)
{
    if (const ProcessId process = connection.process()) {
        _processes.erase(process);
        _objects.dropClient(process);
        _navigator.disconnected(process);
    }
}

} // namespace kelp::device
