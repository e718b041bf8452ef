// SPDX-License-Identifier: Apache-2.0
// How long is an event on its way from the device to the application's signal?
//
// Measures, with one event in flight, the time to the slot of an application in another process
//  - from the device: its navigator, in this program, has the event to send;
//  - from a person: this program sends the command to a running kelp-device, which sends the event;
// beside a D-Bus signal through a dbus-daemon to a receiver that uses sd-bus (the peer), which passes a third
// process as the person's command does. The roads take turns.
//
// Guards: on one CPU, from the device at most half of D-Bus's median.
//
//     taskset -c 0 kelp-device run -- delivery [EVENTS]    EVENTS on each road, 5000 by default
//     kelp-device run -- delivery [EVENTS]                 on any CPU, to compare

#include "Comparison.h"
#include "Placement.h"
#include "roads/Road.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace kelp::bench;

namespace {

constexpr int TURNS = 10;
constexpr int WARM_UP = 200;

double exchange(Road &road, bool active)
{
    const auto sent = std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    road.send(active);
    const std::int64_t taken = road.arrival() - sent;
    road.settle();
    if (taken < 0) {
        throw std::runtime_error("the receiver has reported an event that was not sent");
    }
    return static_cast<double>(taken) / 1000;
}

// Events in pairs: every road begins with its window group active.
void drive(Road &road, int events, Samples &samples)
{
    for (int i = 0; i < events; i += 2) {
        samples.add(exchange(road, false));
        samples.add(exchange(road, true));
    }
}

void compareRoads(int events)
{
    const Target target{isOnOneCpu() ? 0.5 : 0, 0};
    Comparison comparison("delivery, " + placement(), "us");
    const struct {
        std::unique_ptr<Road> road;
        Samples &samples;
    } lanes[] = {{makeDeviceRoad(), comparison.add("device to signal", target)},
                 {makeCommandRoad(), comparison.add("person to signal")},
                 {makeBusRoad(), comparison.addPeer("D-Bus signal")}};
    for (const auto &lane : lanes) {
        Samples ignored;
        drive(*lane.road, WARM_UP, ignored);
    }
    for (int turn = 0; turn < TURNS; ++turn) {
        for (const auto &lane : lanes) {
            drive(*lane.road, events / TURNS, lane.samples);
        }
    }
    comparison.print();
}

} // namespace

int main(int argc, char **argv)
{
    try {
        compareRoads(argc > 1 ? std::max(std::atoi(argv[1]), 2 * TURNS) : 5000);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "delivery: %s\n", error.what());
        return 1;
    }
}
