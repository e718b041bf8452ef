// SPDX-License-Identifier: Apache-2.0
// See DoorClient.h.

#include "DoorClient.h"

#include "platform/link/Limits.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <poll.h>

namespace kelp::test {

namespace {

void require(int error, const char *what)
{
    if (error) {
        throw std::system_error(error, std::system_category(), what);
    }
}

// One message, or nothing at the end.
std::optional<link::Message> receiveFrom(int socket)
{
    pollfd readable{socket, POLLIN, 0};
    if (::poll(&readable, 1, static_cast<int>(std::chrono::milliseconds(WAIT_TIME).count())) <= 0) {
        throw std::runtime_error("the device sends nothing");
    }
    std::vector<char> buffer(link::MAX_MESSAGE_BYTES);
    std::size_t length = 0;
    link::Passed passed;
    const int error = link::receiveMessage(socket, buffer.data(), buffer.size(), length, passed);
    if (error == ECONNRESET || (!error && length == 0)) {
        return {};
    }
    require(error, "cannot receive");
    auto message = link::decode({buffer.data(), length});
    if (!message) {
        throw std::runtime_error("the device sent bytes that are no message");
    }
    return message;
}

} // namespace

DoorClient::DoorClient(const std::string &directory)
{
    require(link::connectToDevice(directory, WAIT_TIME, _socket), "cannot connect");
}

DoorClient::DoorClient(const std::string &directory, link::Role role) : DoorClient(directory)
{
    require(ask(link::Hello{link::PROTOCOL_VERSION, role}).status, "not admitted");
}

int DoorClient::send(link::Body body, int passed)
{
    return sendBytes(link::encode({++_serial, std::move(body)}), passed);
}

int DoorClient::sendBytes(std::string_view bytes, int passed)
{
    const std::span<const int> none;
    return link::sendMessage(_socket.get(), bytes, passed < 0 ? none : std::span<const int>(&passed, 1));
}

std::optional<link::Reply> DoorClient::receive()
{
    const auto message = receiveFrom(_socket.get());
    return message ? std::optional<link::Reply>(std::get<link::Reply>(message->body)) : std::nullopt;
}

link::Reply DoorClient::ask(link::Body body, int passed)
{
    require(send(std::move(body), passed), "cannot send");
    link::Reply answer;
    std::string text;
    do {
        const auto message = receiveFrom(_socket.get());
        if (!message || message->serial != _serial) {
            throw std::runtime_error("no answer to this message");
        }
        answer = std::get<link::Reply>(message->body);
        text += answer.text;
    } while (answer.more);
    answer.text = std::move(text);
    return answer;
}

link::Reply DoorClient::command(const std::string &name,
                                std::vector<std::pair<std::string, std::string>> arguments)
{
    return ask(link::Command{name, std::move(arguments)});
}

link::UniqueFd DoorClient::openEvents()
{
    link::UniqueFd ours;
    link::UniqueFd theirs;
    require(link::socketPair(ours, theirs), "cannot make a channel");
    require(ask(link::OpenEvents{}, theirs.get()).status, "cannot open events");
    return ours;
}

std::optional<link::Event> nextEvent(int channel)
{
    const auto message = receiveFrom(channel);
    return message ? std::optional<link::Event>(std::get<link::Event>(message->body)) : std::nullopt;
}

link::Event awaitEvent(int channel, int code)
{
    for (;;) {
        const std::optional<link::Event> event = nextEvent(channel);
        if (!event) {
            throw std::runtime_error("the channel ended before the event");
        }
        if (event->code == code) {
            return *event;
        }
    }
}

} // namespace kelp::test
