// SPDX-License-Identifier: Apache-2.0
// See Road.h.

#include "Road.h"

#include <systemd/sd-bus.h>

#include <system_error>

namespace kelp::bench {

namespace {

class BusRoad : public Road
{
public:
    BusRoad()
    {
        const std::string address = _daemon.readLine(); // once it listens
        sd_bus *bus = nullptr;
        check(sd_bus_new(&bus));
        _bus.reset(bus);
        check(sd_bus_set_address(bus, address.c_str()));
        check(sd_bus_set_bus_client(bus, 1));
        check(sd_bus_start(bus));
        startReceiver({siblingProgram("bench_bus_receiver"), address});
        (void)arrival(); // it listens
    }

    void send(bool active) override
    {
        const char *name = active ? "Active" : "Inactive";
        check(sd_bus_emit_signal(_bus.get(), "/window", "kelp.bench.Window", name, "s", "application-1"));
        check(sd_bus_flush(_bus.get()));
    }

private:
    struct Closer {
        void operator()(sd_bus *bus) const { sd_bus_flush_close_unref(bus); }
    };

    static void check(int result)
    {
        if (result < 0) {
            throw std::system_error(-result, std::generic_category(), "sd-bus");
        }
    }

    ChildProcess _daemon{{"dbus-daemon", "--session", "--nofork", "--print-address"}};
    std::unique_ptr<sd_bus, Closer> _bus;
};

} // namespace

std::unique_ptr<Road> makeBusRoad()
{
    return std::make_unique<BusRoad>();
}

} // namespace kelp::bench
