// SPDX-License-Identifier: Apache-2.0
// How many updates per second reach 1, 10 and 100 subscribers?
//
// Measures updates of 200 bytes from one process to subscribers in another that read each,
//  - in lock step: the next is published when all have read the last;
//  - flooding: the publisher goes on at once; where a system keeps the newest state, slow subscribers skip
//    others. Each turn ends when every subscriber has read the last update, and fails where one does not get
//    it.
// The systems take turns.
//
// Guards, in lock step on one CPU: at least as many as Redis with messages, and four times as many as Redis
// as a store.
//
//     taskset -c 0 fanout    on one CPU
//     fanout                 on any CPU, to compare

#include "Comparison.h"
#include "Placement.h"
#include "systems/Audience.h"
#include "systems/DeviceProcess.h"
#include "systems/System.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <vector>

using namespace kelp::bench;

namespace {

constexpr int TURNS = 15;
constexpr std::chrono::milliseconds TURN(20);

enum class Pace { LockStep, Flooding };

struct Rates { // per millisecond
    double updates;
    double deliveries;
};

class Lane
{
public:
    Lane(std::unique_ptr<System> system, std::size_t subscribers)
        : _system(std::move(system)),
          _audience(*_system, subscribers),
          _publisher(_system->publisher("a"))
    {}

    Rates drive(Pace pace)
    {
        const std::uint64_t published = _sequence;
        const std::uint64_t delivered = _audience.delivered();
        const auto begun = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - begun < TURN) {
            _update.set({++_sequence, 0});
            _publisher->publish(_update);
            if (pace == Pace::LockStep) {
                _audience.awaitAll(_sequence);
            }
        }
        _audience.awaitAll(_sequence);
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begun;
        return {static_cast<double>(_sequence - published) / taken.count(),
                static_cast<double>(_audience.delivered() - delivered) / taken.count()};
    }

private:
    std::unique_ptr<System> _system;
    Audience _audience;
    std::unique_ptr<Publisher> _publisher;
    Update _update;
    std::uint64_t _sequence = 0;
};

struct Row {
    Samples &deliveries;
    Samples &updates;
};

void drive(std::vector<std::unique_ptr<Lane>> &lanes, Pace pace, const std::vector<Row> &rows)
{
    for (int turn = 0; turn <= TURNS; ++turn) {
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            const Rates rates = lanes[i]->drive(pace);
            if (turn > 0) { // the first one is to warm up
                rows[i].deliveries.add(rates.deliveries);
                rows[i].updates.add(rates.updates);
            }
        }
    }
}

void compareAt(std::vector<std::unique_ptr<Lane>> &lanes, Pace pace, const std::string &where)
{
    const std::string title = pace == Pace::LockStep ? "fan-out, lock step" : "fan-out, flooding";
    Comparison deliveries(title + where, "k/s");
    Comparison updates(title + ", updates" + where, "k/s");
    const std::vector<Row> rows{
        {deliveries.add("kelp-device"), updates.add("kelp-device")},
        {deliveries.addPeer("Redis messages"), updates.addPeer("Redis messages")},
        {deliveries.add("Redis store"), updates.add("Redis store")},
    };
    if (pace == Pace::LockStep && isOnOneCpu()) {
        deliveries.atLeast("kelp-device", 1, "Redis messages");
        deliveries.atLeast("kelp-device", 4, "Redis store");
    }
    drive(lanes, pace, rows);
    deliveries.print();
    if (pace == Pace::Flooding) { // else they are as many for each subscriber
        updates.print();
    }
}

void compareWith(std::size_t subscribers)
{
    std::vector<std::unique_ptr<Lane>> lanes;
    for (const auto make : {makeDeviceSystem, makeRedisChannels, makeRedisHashes}) {
        lanes.push_back(std::make_unique<Lane>(make(), subscribers));
    }
    const std::string where = " to " + std::to_string(subscribers) + ", " + placement();
    compareAt(lanes, Pace::LockStep, where);
    compareAt(lanes, Pace::Flooding, where);
}

} // namespace

int main()
{
    try {
        raiseDescriptorLimit();
        for (const std::size_t subscribers : {1, 10, 100}) {
            compareWith(subscribers);
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "fanout: %s\n", error.what());
        return 1;
    }
}
