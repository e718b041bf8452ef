// SPDX-License-Identifier: Apache-2.0
// How much memory does the device need for an object, and for a subscriber that waits?
//
// Measures how much the device's process grows with 100,000 objects of 200 bytes and with 1,000 subscribers,
// beside Redis's (the peer) with as many hashes, and connections that are subscribed to a channel. What a
// subscriber of the device shares with it is told on its own. What the kernel keeps of sockets and pipes is
// in neither figure.
//
// Guards nothing: the figures are to be known. Run it without arguments.

#include "Comparison.h"
#include "systems/DeviceObject.h"
#include "systems/DeviceProcess.h"
#include "systems/RedisConnection.h"
#include "systems/RedisServer.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <vector>

using namespace kelp::bench;

namespace {

constexpr int OBJECTS = 100000;
constexpr int SUBSCRIBERS = 1000;

struct Memory { // in bytes
    double own = 0;
    double shared = 0;
};

Memory memoryOf(pid_t pid)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    Memory memory;
    for (std::string field; status >> field;) {
        if (field == "RssAnon:") {
            status >> memory.own;
        } else if (field == "RssShmem:") {
            status >> memory.shared;
        }
    }
    return {memory.own * 1024, memory.shared * 1024};
}

// What a process has grown by, for each of count things, while they were made.
Memory growth(pid_t pid, int count, const std::function<void()> &make)
{
    const Memory before = memoryOf(pid);
    make();
    const Memory after = memoryOf(pid);
    return {(after.own - before.own) / count, (after.shared - before.shared) / count};
}

std::string objectName(int number)
{
    return "bench/object-" + std::to_string(OBJECTS + number); // all of one length
}

void publishObjects(const Update &update)
{
    for (int i = 0; i < OBJECTS; ++i) {
        DeviceObject("/pps/" + objectName(i), O_WRONLY).write(update);
    }
}

void setHashes(RedisConnection &connection, const Update &update)
{
    for (int i = 0; i < OBJECTS; ++i) {
        connection.appendHashSet(objectName(i), update);
        (void)connection.reply(); // how many fields are new
    }
}

// They have read what there is, and wait for more.
void subscribeToObjects(std::vector<DeviceObject> &subscribers)
{
    for (int i = 0; i < SUBSCRIBERS; ++i) {
        (void)subscribers.emplace_back("/pps/" + objectName(i), O_RDONLY).read();
    }
}

void subscribeToChannel(const RedisServer &server, std::vector<RedisConnection> &subscribers)
{
    for (int i = 0; i < SUBSCRIBERS; ++i) {
        RedisConnection &connection = subscribers.emplace_back(server.socketPath());
        connection.append({"SUBSCRIBE", "bench"});
        (void)connection.reply(); // done
    }
}

void compareMemory()
{
    const DeviceProcess device;
    ::setenv("KELP_DEVICE", device.directory().c_str(), 1);
    const RedisServer redis;
    RedisConnection connection(redis.socketPath());
    const Update update;
    Comparison object("memory, object of 200 bytes", "B");
    object.add("kelp-device").add(growth(device.pid(), OBJECTS, [&] { publishObjects(update); }).own);
    object.addPeer("Redis").add(growth(redis.pid(), OBJECTS, [&] { setHashes(connection, update); }).own);
    object.print();

    std::vector<DeviceObject> subscribers;
    std::vector<RedisConnection> connections;
    Comparison waiting("memory, waiting subscriber", "B");
    const Memory subscriber = growth(device.pid(), SUBSCRIBERS, [&] { subscribeToObjects(subscribers); });
    waiting.add("kelp-device").add(subscriber.own);
    waiting.add("shared with kelp-device").add(subscriber.shared);
    waiting.addPeer("Redis").add(
        growth(redis.pid(), SUBSCRIBERS, [&] { subscribeToChannel(redis, connections); }).own);
    waiting.print();
}

} // namespace

int main()
{
    try {
        raiseDescriptorLimit();
        compareMemory();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "footprint: %s\n", error.what());
        return 1;
    }
}
