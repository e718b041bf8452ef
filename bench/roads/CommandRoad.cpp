// SPDX-License-Identifier: Apache-2.0
// See Road.h. Talks to a running kelp-device as its command line does.

#include "Road.h"

#include "platform/link/Limits.h"
#include "platform/link/Message.h"
#include "platform/link/Socket.h"

#include <chrono>
#include <cstdlib>
#include <stdexcept>

namespace kelp::bench {

namespace {

class CommandRoad : public Road
{
public:
    CommandRoad()
    {
        startReceiver({siblingProgram("bench_application"), "moments"});
        const char *device = std::getenv("KELP_DEVICE");
        if (!device || link::connectToDevice(device, std::chrono::seconds(10), _connection)) {
            throw std::runtime_error("there is no device: run this with kelp-device run -- PROGRAM");
        }
        say(link::Hello{link::PROTOCOL_VERSION, link::Role::Control});
        settle();
        (void)arrival(); // launched: full screen and active
    }

    void send(bool active) override
    {
        say(link::Command{"event", {{"name", active ? "activate" : "deactivate"}}});
    }

    void settle() override
    {
        char buffer[4096];
        std::size_t length = 0;
        link::Passed passed;
        const int error = link::receiveMessage(_connection.get(), buffer, sizeof buffer, length, passed);
        const auto message = error ? std::nullopt : link::decode({buffer, length});
        const auto *reply = message ? std::get_if<link::Reply>(&message->body) : nullptr;
        if (!reply || reply->status) {
            throw std::runtime_error("the device refuses: " + (reply ? reply->text : "no answer"));
        }
    }

private:
    void say(link::Body body)
    {
        if (link::sendMessage(_connection.get(), link::encode({++_serial, std::move(body)}))) {
            throw std::runtime_error("the device has gone");
        }
    }

    link::UniqueFd _connection;
    std::uint32_t _serial = 0;
};

} // namespace

std::unique_ptr<Road> makeCommandRoad()
{
    return std::make_unique<CommandRoad>();
}

} // namespace kelp::bench
