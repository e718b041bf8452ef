// SPDX-License-Identifier: Apache-2.0
// A publish/subscribe system, as the benchmarks use all of them. A System runs its servers as long as it
// lives. Make it before the processes that use it are forked; each of them then opens publishers and
// subscribers of its own.
#pragma once

#include "Update.h"

#include <functional>
#include <memory>

#include <poll.h>

namespace kelp::bench {

using Sink = std::function<void(const Stamp &)>;

class Publisher
{
public:
    virtual ~Publisher() = default;

    // Sends an update off. What the system makes its publishers wait for is waited for.
    virtual void publish(const Update &update) = 0;
};

class Subscriber
{
public:
    virtual ~Subscriber() = default;

    // Readable when there may be something to take.
    virtual int descriptor() const = 0;

    // Hands what has come to the sink, which may be nothing.
    virtual void take(const Sink &sink) = 0;

    // Waits until there is something to take, and takes it.
    virtual void receive(const Sink &sink)
    {
        pollfd readable{descriptor(), POLLIN, 0};
        (void)::poll(&readable, 1, -1); // interrupted: nothing to take, which take() finds out
        take(sink);
    }
};

class System
{
public:
    virtual ~System() = default;
    virtual std::unique_ptr<Publisher> publisher(const std::string &topic) = 0;
    // On return the subscription is in force.
    virtual std::unique_ptr<Subscriber> subscriber(const std::string &topic) = 0;
};

// Objects of a kelp-device, through devicefs. It sets KELP_DEVICE. A publisher waits until the device has the
// update.
std::unique_ptr<System> makeDeviceSystem();

// Redis as a messenger: the update travels in the message and is stored nowhere.
std::unique_ptr<System> makeRedisChannels();

// Redis as a store: a hash is set and its change told in one go; the subscriber then asks for the hash.
std::unique_ptr<System> makeRedisHashes();

// A mosquitto broker on a Unix socket, with quality of service 0.
std::unique_ptr<System> makeMosquittoSystem();

// Broadcast signals through a dbus-daemon, with sd-bus at both ends.
std::unique_ptr<System> makeBusSystem();

// The limit: a socket pair for each of the topics "a" and "b", with one subscriber each, and nothing in
// between.
std::unique_ptr<System> makeSocketPairs();

} // namespace kelp::bench
