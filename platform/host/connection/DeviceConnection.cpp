// SPDX-License-Identifier: Apache-2.0
// See DeviceConnection.h.

#include "DeviceConnection.h"

#include "platform/host/NeverDestroyed.h"
#include "platform/link/Exchange.h"
#include "platform/link/Limits.h"
#include "platform/link/Socket.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>

#include <poll.h>
#include <pthread.h>

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
        connection->_socket.reset();
        connection.renew();
    });
    (void)registered; // without memory for it, a fork() is the caller's risk
    return *connection;
}

int DeviceConnection::ask(const link::Body &body, std::string &text, int passed)
{
    text.clear();
    const std::lock_guard lock(_mutex);
    if (_socket && hasGone()) {
        _socket.reset();
    }
    if (!_socket) {
        if (const int error = connect()) {
            return error;
        }
    }
    link::Reply reply;
    if (const int error = exchange(body, passed, reply)) {
        return error;
    }
    text = std::move(reply.text);
    return reply.status;
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
    link::Reply reply;
    int error = exchange(link::Hello{link::PROTOCOL_VERSION, link::Role::Application}, -1, reply);
    if (!error && reply.status) {
        error = lost(reply.status);
    }
    return error;
}

int DeviceConnection::exchange(const link::Body &body, int passed, link::Reply &reply)
{
    const int error = link::exchange(_socket.get(), ++_serial, body, passed, reply);
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
    return error;
}

} // namespace kelp::platform
