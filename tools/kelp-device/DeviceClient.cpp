// SPDX-License-Identifier: Apache-2.0
// See DeviceClient.h.

#include "DeviceClient.h"

#include "Failure.h"
#include "device/directory/DirectoryCheck.h"
#include "platform/link/Exchange.h"
#include "platform/link/Limits.h"
#include "platform/link/Socket.h"

#include <cerrno>
#include <system_error>

#include <poll.h>

namespace kelp::tool {

namespace {

[[noreturn]] void failConnect(const std::string &directory, int error)
{
    switch (error) {
    case ENOENT:
        throw Failure(EXIT_NO_DEVICE,
                      "no device runs in " + directory + ": start one with `kelp-device start`");
    case ECONNREFUSED:
        throw Failure(EXIT_NO_DEVICE,
                      "the device in " + directory +
                          " has died and left its socket: `kelp-device start` tidies up and starts "
                          "a new one");
    case EAGAIN:
        throw Failure(EXIT_TIME_OUT, "the device in " + directory + " takes no connection: is it stopped?");
    default:
        throw Failure(EXIT_NO_DEVICE, "cannot connect to the device in " + directory + " (" +
                                          std::generic_category().message(error) +
                                          "): start another with `kelp-device start --device`");
    }
}

} // namespace

DeviceClient::DeviceClient(const std::string &directory) : _directory(directory)
{
    const device::DirectoryCheck check(directory);
    if (check.isMissing) {
        throw Failure(EXIT_NO_DEVICE,
                      "no device runs in " + directory +
                          ": there is no such directory. Start one with `kelp-device start`, or say "
                          "where it is with --device or KELP_DEVICE");
    }
    if (!check.refusal.empty()) {
        throw Failure(EXIT_NO_DEVICE, check.refusal);
    }
    if (const int error = link::connectToDevice(directory, link::ANSWER_TIME, _socket)) {
        failConnect(directory, error);
    }
    (void)exchange(link::Hello{link::PROTOCOL_VERSION, link::Role::Control}); // its answer has no text
}

std::string DeviceClient::ask(const std::string &verb, Arguments arguments)
{
    return exchange(link::Command{verb, std::move(arguments)});
}

bool DeviceClient::endsWithin(std::chrono::milliseconds timeout) const
{
    const auto end = std::chrono::steady_clock::now() + timeout;
    pollfd socket{_socket.get(), POLLIN, 0};
    int ready = 0;
    do {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        ready = ::poll(&socket, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

void DeviceClient::awaitEnd(std::chrono::milliseconds timeout) const
{
    if (!endsWithin(timeout)) {
        throw Failure(EXIT_TIME_OUT,
                      "the device in " + _directory +
                          " has not ended yet: wait for its applications, or stop it once more to "
                          "end them at once");
    }
}

std::string DeviceClient::exchange(link::Body body)
{
    link::Reply reply;
    link::Passed none;
    if (const int error = link::exchange(_socket.get(), ++_serial, std::move(body), {}, reply, none)) {
        fail(error);
    }
    if (reply.status) {
        throw Failure(EXIT_REFUSED,
                      reply.text.empty() ? std::generic_category().message(reply.status) : reply.text);
    }
    return reply.text;
}

void DeviceClient::fail(int error) const
{
    switch (error) {
    case EAGAIN:
        throw Failure(EXIT_TIME_OUT, "the device in " + _directory + " does not answer: is it stopped?");
    case EPROTO:
        throw Failure(EXIT_REFUSED,
                      "the device in " + _directory + " is of another release: stop it with that one");
    default:
        throw Failure(EXIT_NO_DEVICE, "the device in " + _directory + " went away: start it again");
    }
}

} // namespace kelp::tool
