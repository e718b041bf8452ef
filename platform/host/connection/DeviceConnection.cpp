// SPDX-License-Identifier: Apache-2.0
// See DeviceConnection.h.

#include "DeviceConnection.h"

#include "platform/host/NeverDestroyed.h"
#include "platform/link/Exchange.h"
#include "platform/link/Limits.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

namespace kelp::platform {

namespace {

// A failed connect(2) as callers are told of it: most causes mean that no device is there.
int connectError(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return EACCES;
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case ENOBUFS:
        return error;
    case EAGAIN:
        return ETIMEDOUT;
    default:
        return ENOTCONN;
    }
}

} // namespace

DeviceConnection &DeviceConnection::instance()
{
    static NeverDestroyed<DeviceConnection> connection;
    // The child must neither answer for the parent nor wait for a lock that a thread of the parent held.
    static const int registered = ::pthread_atfork(nullptr, nullptr, [] {
        (void)connection->lost(0); // closes the child's copies; the parent's stay
        connection.renew();
    });
    (void)registered; // without memory for it, a fork() is the caller's risk
    return *connection;
}

int DeviceConnection::ask(const link::Body &body, Answer &answer, std::span<const int> passed,
                          Generation generation)
{
    answer = {};
    const std::lock_guard lock(_mutex);
    if (_socket && hasGone()) {
        (void)lost(0); // the next one may be there by now
    }
    if (generation != ANY && (!_socket || generation != _generation)) {
        return ECONNRESET;
    }
    if (!_socket) {
        if (const int error = connect()) {
            return error;
        }
    }
    link::Reply reply;
    if (const int error = exchange(body, passed, reply, answer.passed)) {
        return error;
    }
    answer.text = std::move(reply.text);
    answer.generation = _generation;
    return reply.status;
}

int DeviceConnection::write(Generation generation, std::uint32_t descriptor, std::string_view text)
{
    const std::lock_guard lock(_mutex);
    if (!_socket || generation != _generation) {
        return ECONNRESET;
    }
    if (!_calls) {
        if (const int error = openCalls()) {
            return error;
        }
    }
    if (text.size() > _calls.textBytes()) {
        return EMSGSIZE;
    }
    _calls.ask(descriptor, text);
    const std::uint64_t one = 1;
    if (::write(_doorbell.get(), &one, sizeof one) != sizeof one) {
        return lost(ECONNRESET);
    }
    return awaitAnswer();
}

int DeviceConnection::connect()
{
    const char *directory = ::secure_getenv("KELP_DEVICE");
    if (!directory || !*directory) {
        return ENOTCONN;
    }
    if (const int error = link::connectToDevice(directory, link::ANSWER_TIME, _socket)) {
        return connectError(error);
    }
    ++_generation;
    link::Reply reply;
    link::Passed none;
    int error = exchange(link::Hello{link::PROTOCOL_VERSION, link::Role::Application}, {}, reply, none);
    if (!error && reply.status) {
        error = lost(reply.status);
    }
    return error;
}

int DeviceConnection::openCalls()
{
    link::Reply reply;
    link::Passed passed;
    if (const int error = exchange(link::OpenCalls{}, {}, reply, passed)) {
        return error;
    }
    if (reply.status) {
        return reply.status;
    }
    link::SharedMemory memory;
    if (passed.size() != 2) {
        return EMFILE; // there was no room for them
    }
    if (const int error = link::SharedMemory::map(passed[0], link::CallPage::sizeFor(0), memory)) {
        return error;
    }
    _calls = link::CallPage(std::move(memory));
    _doorbell = std::move(passed[1]);
    return 0;
}

// The page does not tell of the device's end, the socket does: it is looked at whenever an answer is late.
int DeviceConnection::awaitAnswer()
{
    constexpr std::chrono::milliseconds LATE(100);
    for (auto left = std::chrono::milliseconds(link::ANSWER_TIME); left > left.zero(); left -= LATE) {
        int status = 0;
        if (_calls.awaitAnswer(LATE, status)) {
            return status;
        }
        if (hasGone()) {
            return lost(ECONNRESET);
        }
    }
    return lost(ETIMEDOUT);
}

int DeviceConnection::exchange(const link::Body &body, std::span<const int> passed, link::Reply &reply,
                               link::Passed &received)
{
    const int error = link::exchange(_socket.get(), ++_serial, body, passed, reply, received);
    return error ? lost(error == EAGAIN ? ETIMEDOUT : error) : 0;
}

// Whether the device has closed the connection since the last request.
bool DeviceConnection::hasGone() const
{
    pollfd socket{_socket.get(), POLLIN, 0};
    return ::poll(&socket, 1, 0) > 0; // readable between requests: its end, or rubbish
}

// After a failure the two ends may be out of step: the next request begins with a new connection.
int DeviceConnection::lost(int error)
{
    _socket.reset();
    _doorbell.reset();
    _calls = link::CallPage();
    return error;
}

} // namespace kelp::platform
