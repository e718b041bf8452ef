// SPDX-License-Identifier: Apache-2.0
// Does a change cost more where there are many objects, or many who subscribe to other objects?
//
// Measures a change of 200 bytes to one object, from before it is published until its one subscriber, in the
// same process, has read it: on devices with 1 (the peer), 1,000 and 100,000 objects, and with 1,000 objects
// that have a waiting subscriber each. The devices take turns.
//
// Guards, on one CPU: at most 1.2 times as much as with one object.
//
//     taskset -c 0 scaling    on one CPU
//     scaling                 on any CPU, to compare

#include "ChildProcess.h"
#include "Comparison.h"
#include "Placement.h"
#include "systems/DeviceObject.h"
#include "systems/DeviceProcess.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <sys/eventfd.h>
#include <unistd.h>

using namespace kelp::bench;

namespace {

constexpr int TURNS = 40;
constexpr int CHANGES = 500; // of one turn
constexpr double MOST = 1.2;

struct Load {
    const char *name;
    int objects;
    int subscribers; // one for each of as many objects, beside the one that is measured
};

constexpr Load ALONE{"1 object", 1, 0};
constexpr Load LOADS[] = {{"1000 objects", 1000, 0},
                          {"100,000 objects", 100000, 0},
                          {"1000 objects, 1000 waiting subscribers", 1000, 1000}};

// A process with a device of its own under some load, which measures a turn whenever it is asked to.
class Bench
{
public:
    explicit Bench(const Load &load)
        : _go(::eventfd(0, EFD_CLOEXEC)),
          _process(load.name, [&](int output) { run(load, output); })
    {
        (void)microseconds(); // the load is there, and it is warm
    }

    // That a change takes, on the average of a turn.
    double microseconds()
    {
        (void)::eventfd_write(_go.get(), 1); // cannot fail: it counts to one
        double measured = 0;
        _process.read(&measured, sizeof measured);
        return measured;
    }

private:
    void run(const Load &load, int output)
    {
        kelp::device::DeviceOptions options;
        options.limits.descriptorsPerProcess = 4096;
        const DeviceProcess device(options);
        ::setenv("KELP_DEVICE", device.directory().c_str(), 1);
        const std::vector<DeviceObject> waiting = makeLoad(load);
        DeviceObject publisher("/pps/bench/changing", O_WRONLY);
        DeviceObject subscriber("/pps/bench/changing", O_RDONLY);
        for (eventfd_t asked = 0; ::eventfd_read(_go.get(), &asked) == 0;) { // until it is ended
            const double measured = turn(publisher, subscriber);
            if (::write(output, &measured, sizeof measured) != sizeof measured) {
                throw std::system_error(errno, std::generic_category(), "write");
            }
        }
    }

    static std::vector<DeviceObject> makeLoad(const Load &load)
    {
        std::vector<DeviceObject> waiting;
        const Update update;
        for (int i = 1; i < load.objects; ++i) { // the one that changes counts too
            DeviceObject("/pps/bench/" + std::to_string(i), O_WRONLY).write(update);
        }
        for (int i = 1; i <= load.subscribers; ++i) {
            (void)waiting.emplace_back("/pps/bench/" + std::to_string(i), O_RDONLY).read();
        }
        return waiting;
    }

    double turn(DeviceObject &publisher, DeviceObject &subscriber)
    {
        const std::int64_t begun = monotonicNow();
        for (int i = 0; i < CHANGES; ++i) {
            _update.set({++_sequence, 0});
            publisher.write(_update);
            if (subscriber.read().sequence != _sequence) {
                throw std::runtime_error("the subscriber does not read what has just been written");
            }
        }
        return static_cast<double>(monotonicNow() - begun) / 1000 / CHANGES;
    }

    Update _update;
    std::uint64_t _sequence = 0;
    kelp::link::UniqueFd _go; // rung for each turn
    ChildProcess _process;
};

void compareLoads()
{
    struct Lane {
        Lane(const Load &load, Samples &given) : bench(load), samples(given) {}
        Bench bench;
        Samples &samples;
    };
    Comparison comparison("change, " + placement(), "us");
    std::deque<Lane> lanes;
    lanes.emplace_back(ALONE, comparison.addPeer(ALONE.name));
    for (const Load &load : LOADS) {
        lanes.emplace_back(load, comparison.add(load.name, Target{isOnOneCpu() ? MOST : 0, 0}));
    }
    for (int turn = 0; turn < TURNS; ++turn) {
        for (Lane &lane : lanes) {
            lane.samples.add(lane.bench.microseconds());
        }
    }
    comparison.print();
}

} // namespace

int main()
{
    try {
        raiseDescriptorLimit();
        compareLoads();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "scaling: %s\n", error.what());
        return 1;
    }
}
