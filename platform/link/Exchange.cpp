// SPDX-License-Identifier: Apache-2.0
// See Exchange.h.

#include "Exchange.h"

#include "Limits.h"

#include <algorithm>
#include <cerrno>
#include <memory>

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

int sendRequest(int connection, std::string_view bytes, std::span<const int> passed, Moment end)
{
    const int error = await(connection, POLLOUT, end);
    return error ? error : sendMessage(connection, bytes, passed, MSG_DONTWAIT);
}

int receiveReply(int connection, std::uint32_t serial, Moment end, std::span<char> buffer, Reply &reply,
                 Passed &received)
{
    std::size_t length = 0;
    int error = await(connection, POLLIN, end);
    if (!error) {
        error = receiveMessage(connection, buffer.data(), buffer.size(), length, received, MSG_DONTWAIT);
    }
    if (error) {
        return transportError(error);
    }
    if (length == 0) {
        return ECONNRESET;
    }
    auto message = decode({buffer.data(), length});
    auto *answer = message ? std::get_if<Reply>(&message->body) : nullptr;
    if (!answer || message->serial != serial) {
        return EPROTO;
    }
    reply = std::move(*answer);
    return 0;
}

} // namespace

int exchange(int connection, std::uint32_t serial, Body body, std::span<const int> passed, Reply &reply,
             Passed &received)
{
    const Moment end = std::chrono::steady_clock::now() + ANSWER_TIME;
    if (const int error = sendRequest(connection, encode({serial, std::move(body)}), passed, end)) {
        return transportError(error);
    }
    const auto buffer = std::make_unique_for_overwrite<char[]>(MAX_REPLY_BYTES);
    std::string text;
    Reply part;
    do {
        if (const int error =
                receiveReply(connection, serial, end, {buffer.get(), MAX_REPLY_BYTES}, part, received)) {
            return error;
        }
        text += part.text;
    } while (part.more);
    reply = {part.status, false, std::move(text)};
    return 0;
}

} // namespace kelp::link
