// SPDX-License-Identifier: Apache-2.0
// How many updates per second can one publisher make that waits for each?
//
// Measures updates of 200 bytes to 64 objects in turn that nobody subscribes to: on a device, and with HSET
// on Redis (the peer). The two take turns.
//
// Guards, on one CPU: at least 1.2 times as many as Redis.
//
//     taskset -c 0 updates    on one CPU
//     updates                 on any CPU, to compare

#include "Comparison.h"
#include "Placement.h"
#include "systems/DeviceObject.h"
#include "systems/DeviceProcess.h"
#include "systems/RedisConnection.h"
#include "systems/RedisServer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <vector>

using namespace kelp::bench;

namespace {

constexpr int TURNS = 40;
constexpr std::chrono::milliseconds TURN(25);
constexpr std::size_t OBJECTS = 64;

using Store = std::function<void(std::size_t object, const Update &)>;

Store deviceStore()
{
    auto objects = std::make_shared<std::vector<DeviceObject>>();
    for (std::size_t i = 0; i < OBJECTS; ++i) {
        objects->emplace_back("/pps/bench/" + std::to_string(i), O_WRONLY);
    }
    return [objects](std::size_t object, const Update &update) {
        (*objects)[object].write(update);
    };
}

Store redisStore(const RedisServer &server)
{
    auto connection = std::make_shared<RedisConnection>(server.socketPath());
    return [connection](std::size_t object, const Update &update) {
        connection->appendHashSet("bench/" + std::to_string(object), update);
        (void)connection->reply(); // how many fields are new
    };
}

class Lane
{
public:
    Lane(Store store, Samples &samples) : _store(std::move(store)), _samples(samples) {}

    void drive()
    {
        const auto begun = std::chrono::steady_clock::now();
        std::chrono::steady_clock::duration taken{};
        double updates = 0;
        for (; taken < TURN; taken = std::chrono::steady_clock::now() - begun) {
            _update.set({++_sequence, 0});
            _store(_sequence % OBJECTS, _update);
            ++updates;
        }
        _samples.add(updates / std::chrono::duration<double, std::milli>(taken).count());
    }

private:
    Store _store;
    Samples &_samples;
    Update _update;
    std::uint64_t _sequence = 0;
};

void compareStores()
{
    const DeviceProcess device;
    ::setenv("KELP_DEVICE", device.directory().c_str(), 1);
    const RedisServer redis;
    Comparison comparison("updates, " + placement(), "k/s");
    Lane lanes[] = {{deviceStore(), comparison.add("kelp-device")},
                    {redisStore(redis), comparison.addPeer("Redis HSET")}};
    if (isOnOneCpu()) {
        comparison.atLeast("kelp-device", 1.2, "Redis HSET");
    }
    for (int turn = 0; turn < TURNS; ++turn) {
        for (Lane &lane : lanes) {
            lane.drive();
        }
    }
    comparison.print();
}

} // namespace

int main()
{
    try {
        compareStores();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "updates: %s\n", error.what());
        return 1;
    }
}
