// SPDX-License-Identifier: Apache-2.0
// How long does it take from the publication of an object until a subscriber in another process has read it?
//
// Measures, with one update of 200 bytes in flight, a round trip: this process publishes "a"; another, which
// waits for that, reads it and publishes "b"; this one waits for that and reads it. Half of it is told, and
// beside it the one way from just before the publication of "a" until its text has been read. The systems
// take turns.
//
// Guards, on one CPU: half the round trip at most 2.5 times that of a bare socket pair, less than Redis's
// with messages and a third of Redis's as a store.
//
//     taskset -c 0 latency [ROUNDS]    of each system, 5000 by default
//     latency [ROUNDS]                 on any CPU, to compare

#include "ChildProcess.h"
#include "Comparison.h"
#include "Placement.h"
#include "systems/System.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

using namespace kelp::bench;

namespace {

constexpr int TURNS = 10;
constexpr int WARM_UP = 300;

// The other process: answers each update with the nanoseconds that it has taken.
[[noreturn]] void answerUpdates(System &system, int output)
{
    const auto subscriber = system.subscriber("a");
    const auto publisher = system.publisher("b");
    if (::write(output, "", 1) != 1) {
        throw std::system_error(errno, std::generic_category(), "write");
    }
    Update answer;
    for (std::uint64_t last = 0;;) { // until it is ended
        subscriber->receive([&](const Stamp &stamp) {
            if (stamp.sequence > last) {
                last = stamp.sequence;
                answer.set({last, monotonicNow() - stamp.sent});
                publisher->publish(answer);
            }
        });
    }
}

class Lane
{
public:
    Lane(std::unique_ptr<System> system, Samples &halves, Samples &oneWays)
        : _system(std::move(system)),
          _halves(halves),
          _oneWays(oneWays)
    {}

    void startPartner()
    {
        _partner = std::make_unique<ChildProcess>("partner",
                                                  [this](int output) { answerUpdates(*_system, output); });
    }

    void open()
    {
        _subscriber = _system->subscriber("b");
        _publisher = _system->publisher("a");
        char ready = 0;
        _partner->read(&ready, 1);
        for (int i = 0; i < WARM_UP; ++i) {
            (void)exchange();
        }
    }

    void drive(int rounds)
    {
        for (int i = 0; i < rounds; ++i) {
            const Times times = exchange();
            _halves.add(static_cast<double>(times.roundTrip) / 2000);
            _oneWays.add(static_cast<double>(times.oneWay) / 1000);
        }
    }

private:
    struct Times { // in nanoseconds
        std::int64_t roundTrip;
        std::int64_t oneWay;
    };

    Times exchange()
    {
        const std::int64_t begun = monotonicNow();
        _update.set({++_sequence, begun});
        _publisher->publish(_update);
        Stamp answer;
        while (answer.sequence != _sequence) {
            _subscriber->receive([&](const Stamp &stamp) { answer = stamp; });
        }
        return {monotonicNow() - begun, answer.sent};
    }

    std::unique_ptr<System> _system;
    std::unique_ptr<ChildProcess> _partner;
    std::unique_ptr<Subscriber> _subscriber;
    std::unique_ptr<Publisher> _publisher;
    Update _update;
    std::uint64_t _sequence = 0;
    Samples &_halves;
    Samples &_oneWays;
};

struct Candidate {
    const char *name;
    std::unique_ptr<System> (*make)();
};

constexpr Candidate CANDIDATES[] = {{"kelp-device", makeDeviceSystem},
                                    {"Redis messages", makeRedisChannels},
                                    {"Redis store", makeRedisHashes},
                                    {"mosquitto", makeMosquittoSystem},
                                    {"D-Bus signal", makeBusSystem}};

void compareSystems(int rounds)
{
    Comparison halves("latency, half round trip, " + placement(), "us");
    Comparison oneWays("latency, one way, " + placement(), "us");
    std::vector<std::unique_ptr<Lane>> lanes;
    for (const Candidate &each : CANDIDATES) {
        lanes.push_back(std::make_unique<Lane>(each.make(), halves.add(each.name), oneWays.add(each.name)));
    }
    lanes.push_back(std::make_unique<Lane>(makeSocketPairs(), halves.addPeer("socket pair"),
                                           oneWays.addPeer("socket pair")));
    if (isOnOneCpu()) {
        halves.atMost("kelp-device", 2.5, "socket pair");
        halves.atMost("kelp-device", 1, "Redis messages");
        halves.atMost("kelp-device", 1 / 3.0, "Redis store");
    }
    // Before anything is open: what this process has open, its children would have too.
    std::for_each(lanes.begin(), lanes.end(), [](const auto &lane) { lane->startPartner(); });
    std::for_each(lanes.begin(), lanes.end(), [](const auto &lane) { lane->open(); });
    for (int turn = 0; turn < TURNS; ++turn) {
        std::for_each(lanes.begin(), lanes.end(), [=](const auto &lane) { lane->drive(rounds / TURNS); });
    }
    halves.print();
    oneWays.print();
}

} // namespace

int main(int argc, char **argv)
{
    try {
        compareSystems(argc > 1 ? std::max(std::atoi(argv[1]), TURNS) : 5000);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "latency: %s\n", error.what());
        return 1;
    }
}
