// SPDX-License-Identifier: Apache-2.0
// See Exchange.h.

#include "Exchange.h"

#include "Limits.h"
#include "Socket.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <poll.h>
#include <sys/socket.h>

namespace kelp::link {

namespace {

int transportError(int error)
{
    return error == EAGAIN ? EAGAIN : ECONNRESET;
}

using Moment = std::chrono::steady_clock::time_point;

// Waits until the connection is readable or writable (POLLIN, POLLOUT), through signals, but not past the moment.
int await(int connection, short what, Moment end)
{
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd socket{connection, what, 0};
        const int ready = ::poll(&socket, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready > 0) {
            return 0;
        }
        if (ready == 0) {
            return EAGAIN;
        }
        if (errno != EINTR) {
            return errno;
        }
    }
}

int sendRequest(int connection, std::string_view bytes, int passed, Moment end)
{
    const int error = await(connection, POLLOUT, end);
    return error ? error : sendMessage(connection, bytes, passed, MSG_DONTWAIT);
}

int receiveReply(int connection, std::uint32_t serial, Moment end, std::vector<char> &buffer, Reply &reply)
{
    std::size_t length = 0;
    UniqueFd unasked;
    int error = await(connection, POLLIN, end);
    if (!error) {
        error = receiveMessage(connection, buffer.data(), buffer.size(), length, unasked, MSG_DONTWAIT);
    }
    if (error) {
        return transportError(error);
    }
    if (length == 0) {
        return ECONNRESET;
    }
    auto message = decode({buffer.data(), length});
    auto *received = message ? std::get_if<Reply>(&message->body) : nullptr;
    if (!received || message->serial != serial) {
        return EPROTO;
    }
    reply = std::move(*received);
    return 0;
}

} // namespace

int exchange(int connection, std::uint32_t serial, Body body, int passed, Reply &reply)
{
    const Moment end = std::chrono::steady_clock::now() + ANSWER_TIME;
    if (const int error = sendRequest(connection, encode({serial, std::move(body)}), passed, end)) {
        return transportError(error);
    }
    std::vector<char> buffer(MAX_MESSAGE_BYTES);
    std::string text;
    Reply part;
    do {
        if (const int error = receiveReply(connection, serial, end, buffer, part)) {
            return error;
        }
        text += part.text;
    } while (part.more);
    reply = {part.status, false, std::move(text)};
    return 0;
}

} // namespace kelp::link
