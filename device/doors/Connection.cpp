// SPDX-License-Identifier: Apache-2.0
// See Connection.h.

#include "Connection.h"

#include "platform/link/Limits.h"
#include "platform/link/Socket.h"

#include <cerrno>
#include <utility>
#include <variant>

namespace kelp::device {

using link::Role;

namespace {

constexpr int MOST_AT_ONCE = 16; // messages; then other connections get their turn
constexpr char NOT_ITS_MESSAGE[] = "its message is not one that it may send";

} // namespace

Connection::Connection(EventLoop &loop, link::UniqueFd socket, std::size_t replyBacklogBytes,
                       ConnectionOwner &owner)
    : _socket(std::move(socket)),
      _watch(loop.watch(_socket.get())),
      _outgoing(_socket.get()),
      _replyBacklogBytes(replyBacklogBytes),
      _owner(owner)
{
    _watch.onReadable([this] { onReadable(); });
}

ucred Connection::peer() const
{
    ucred peer{0, static_cast<uid_t>(-1), static_cast<gid_t>(-1)};
    socklen_t size = sizeof peer;
    (void)::getsockopt(_socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size); // where it fails: as begun
    return peer;
}

void Connection::reply(std::uint32_t serial, const Outcome &outcome, link::Passed passed)
{
    if (_isOpen && _outgoing.bytes() > _replyBacklogBytes) {
        return close("it does not read its replies");
    }
    std::string_view rest = outcome.text;
    do {
        const std::string part(rest.substr(0, link::MAX_REPLY_TEXT_BYTES));
        rest.remove_prefix(part.size());
        if (!_isOpen) {
            return;
        }
        settle(_outgoing.send(link::encode({serial, link::Reply{outcome.error, !rest.empty(), part}}),
                              std::exchange(passed, {})));
    } while (!rest.empty());
}

void Connection::close(const std::string &reason)
{
    if (!_isOpen) {
        return;
    }
    _isOpen = false;
    _watch.end();
    (void)::shutdown(_socket.get(),
                     SHUT_RDWR); // the client learns of it now; it fails only where it has gone itself
    _owner.closed(*this, reason);
}

void Connection::onReadable()
{
    for (int i = 0; i < MOST_AT_ONCE && receiveOne(); ++i) {
    }
}

// Whether it is worth trying again.
bool Connection::receiveOne()
{
    const std::span<char> buffer = _owner.buffer();
    std::size_t length = 0;
    link::Passed passed;
    const int error =
        link::receiveMessage(_socket.get(), buffer.data(), buffer.size(), length, passed, MSG_DONTWAIT);
    if (error == EAGAIN) {
        return false;
    }
    if (error == EMSGSIZE) {
        close("its message is too long");
    } else if (error || length == 0) {
        close("");
    } else if (const auto message = link::decode({buffer.data(), length})) {
        accept(*message, std::move(passed));
    } else {
        close("its bytes are no message");
    }
    return _isOpen;
}

void Connection::accept(const link::Message &message, link::Passed passed)
{
    const auto *hello = std::get_if<link::Hello>(&message.body);
    const auto *command = std::get_if<link::Command>(&message.body);
    const bool opensEvents = std::holds_alternative<link::OpenEvents>(message.body);
    if (passed.size() > (opensEvents ? 1 : 0)) {
        close("it passed a descriptor that nothing asks for");
    } else if (!_isAdmitted && hello) {
        greet(message.serial, *hello);
    } else if (!_isAdmitted) {
        close("its first message is not hello");
    } else if (_role == Role::Application) {
        acceptFromApplication(message, std::move(passed));
    } else if (command) {
        reply(message.serial, _owner.command(*command));
    } else {
        close(NOT_ITS_MESSAGE);
    }
}

void Connection::acceptFromApplication(const link::Message &message, link::Passed passed)
{
    using namespace link;
    if (const auto *request = std::get_if<Request>(&message.body)) {
        reply(message.serial, _owner.request(*this, *request));
    } else if (std::holds_alternative<OpenEvents>(message.body)) {
        _owner.openEvents(*this, message.serial, passed.empty() ? UniqueFd() : std::move(passed.front()));
    } else if (std::holds_alternative<OpenObject>(message.body) ||
               std::holds_alternative<DescriptorCall>(message.body) ||
               std::holds_alternative<PathCall>(message.body) ||
               std::holds_alternative<OpenCalls>(message.body)) {
        Passed answered;
        const Outcome outcome = _owner.objects(*this, message.body, answered);
        reply(message.serial, outcome, std::move(answered));
    } else {
        close(NOT_ITS_MESSAGE);
    }
}

void Connection::greet(std::uint32_t serial, const link::Hello &hello)
{
    const Outcome outcome = _owner.admit(*this, hello);
    reply(serial, outcome);
    if (outcome.error) {
        return close(outcome.text);
    }
    _role = hello.role;
    _isAdmitted = true;
}

void Connection::settle(OutgoingQueue::State state)
{
    switch (state) {
    case OutgoingQueue::State::Empty:
        return _watch.onWritable({});
    case OutgoingQueue::State::Waiting:
        return _watch.onWritable([this] { settle(_outgoing.flush()); });
    case OutgoingQueue::State::Broken:
        return close("");
    }
}

} // namespace kelp::device
