// SPDX-License-Identifier: Apache-2.0
// See Exchange.h.

#include "Exchange.h"

#include "Limits.h"
#include "Socket.h"

#include <cerrno>
#include <vector>

namespace kelp::link {

namespace {

int transportError(int error)
{
    return error == EAGAIN ? EAGAIN : ECONNRESET;
}

int receiveReply(int connection, std::uint32_t serial, std::vector<char> &buffer, Reply &reply)
{
    std::size_t length = 0;
    UniqueFd unasked;
    if (const int error = receiveMessage(connection, buffer.data(), buffer.size(), length, unasked)) {
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
    if (const int error = sendMessage(connection, encode({serial, std::move(body)}), passed)) {
        return transportError(error);
    }
    std::vector<char> buffer(MAX_MESSAGE_BYTES);
    std::string text;
    Reply part;
    do {
        if (const int error = receiveReply(connection, serial, buffer, part)) {
            return error;
        }
        text += part.text;
    } while (part.more);
    reply = {part.status, false, std::move(text)};
    return 0;
}

} // namespace kelp::link
