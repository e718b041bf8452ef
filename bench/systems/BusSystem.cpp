// SPDX-License-Identifier: Apache-2.0
// See System.h.

#include "ServerProcess.h"
#include "System.h"

#include <systemd/sd-bus.h>

#include <system_error>

namespace kelp::bench {

namespace {

constexpr const char *INTERFACE = "kelp.bench.Object";

void check(int result)
{
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), "sd-bus");
    }
}

struct Closer {
    void operator()(sd_bus *bus) const { sd_bus_flush_close_unref(bus); }
};
using Bus = std::unique_ptr<sd_bus, Closer>;

Bus connectTo(const std::string &socketPath)
{
    sd_bus *bus = nullptr;
    check(sd_bus_new(&bus));
    Bus connection(bus);
    check(sd_bus_set_address(bus, ("unix:path=" + socketPath).c_str()));
    check(sd_bus_set_bus_client(bus, 1));
    check(sd_bus_start(bus));
    const char *name = nullptr;
    check(sd_bus_get_unique_name(bus, &name)); // once it is connected
    return connection;
}

class SignalPublisher : public Publisher
{
public:
    SignalPublisher(const std::string &socketPath, const std::string &topic)
        : _bus(connectTo(socketPath)),
          _path('/' + topic)
    {}

    void publish(const Update &update) override
    {
        check(
            sd_bus_emit_signal(_bus.get(), _path.c_str(), INTERFACE, "Changed", "s", update.text().c_str()));
        check(sd_bus_flush(_bus.get()));
    }

private:
    Bus _bus;
    std::string _path;
};

class SignalSubscriber : public Subscriber
{
public:
    SignalSubscriber(const std::string &socketPath, const std::string &topic) : _bus(connectTo(socketPath))
    {
        check(sd_bus_match_signal(_bus.get(), nullptr, nullptr, ('/' + topic).c_str(), INTERFACE, "Changed",
                                  handleSignal, this));
    }

    int descriptor() const override { return sd_bus_get_fd(_bus.get()); }

    void take(const Sink &sink) override
    {
        _sink = &sink;
        while (sd_bus_process(_bus.get(), nullptr) > 0) {
            // each call takes one message
        }
        _sink = nullptr;
    }

private:
    static int handleSignal(sd_bus_message *message, void *self, sd_bus_error *)
    {
        const Sink *sink = static_cast<SignalSubscriber *>(self)->_sink;
        const char *text = nullptr;
        const int result = sd_bus_message_read(message, "s", &text);
        if (result > 0 && sink) {
            (*sink)(Update::read(text));
        }
        return result < 0 ? result : 0;
    }

    Bus _bus;
    const Sink *_sink = nullptr; // while messages are taken
};

class BusSystem : public System
{
public:
    std::unique_ptr<Publisher> publisher(const std::string &topic) override
    {
        return std::make_unique<SignalPublisher>(_server.socketPath(), topic);
    }

    std::unique_ptr<Subscriber> subscriber(const std::string &topic) override
    {
        return std::make_unique<SignalSubscriber>(_server.socketPath(), topic);
    }

private:
    ServerProcess _server{{"dbus-daemon", "--config-file=server.conf", "--nofork"},
                          "<busconfig><type>session</type><listen>unix:path=bus.socket</listen>"
                          "<auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\"/>"
                          "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>",
                          "bus.socket"};
};

} // namespace

std::unique_ptr<System> makeBusSystem()
{
    return std::make_unique<BusSystem>();
}

} // namespace kelp::bench
