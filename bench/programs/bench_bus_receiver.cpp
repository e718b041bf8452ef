// SPDX-License-Identifier: Apache-2.0
// The receiver of the delivery benchmark's D-Bus signals: writes a moment when it listens, then that of each
// signal.
//
//     bench_bus_receiver ADDRESS

#include "Moment.h"

#include <systemd/sd-bus.h>

namespace {

int onSignal(sd_bus_message *message, void *, sd_bus_error *)
{
    const char *group = nullptr;
    const int result = sd_bus_message_read(message, "s", &group);
    kelp::bench::reportMoment();
    return result;
}

} // namespace

int main(int, char **argv)
{
    sd_bus *bus = nullptr; // the process's to its end
    if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, argv[1]) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
        sd_bus_start(bus) < 0 ||
        sd_bus_match_signal(bus, nullptr, nullptr, "/window", "kelp.bench.Window", nullptr, onSignal,
                            nullptr) < 0) {
        return 1;
    }
    kelp::bench::reportMoment();
    int result = 0;
    while (result >= 0) {
        result = sd_bus_process(bus, nullptr);
        if (result == 0) {
            result = sd_bus_wait(bus, UINT64_MAX);
        }
    }
    return 1;
}
