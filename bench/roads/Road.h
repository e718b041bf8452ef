// SPDX-License-Identifier: Apache-2.0
// A way on which a process is told that a window group has become active or inactive. The delivery benchmark
// sends events on several; the receiving programs write the moment of each to their standard output.
#pragma once

#include "bench/ChildProcess.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace kelp::bench {

class Road
{
public:
    virtual ~Road() = default;

    // Sends an event, and returns as soon as it is on its way.
    virtual void send(bool active) = 0;

    // Waits until the receiver has it. Returns that moment in nanoseconds of the monotonic clock.
    std::int64_t arrival()
    {
        std::int64_t moment = 0;
        _receiver->read(&moment, sizeof moment);
        return moment;
    }

    // Ends what is left of an event that has arrived.
    virtual void settle() {}

protected:
    void startReceiver(std::vector<std::string> command)
    {
        _receiver = std::make_unique<ChildProcess>(std::move(command));
    }

private:
    std::unique_ptr<ChildProcess> _receiver;
};

// The navigator of a device in this process, which sends the event to an application, whose Application emits
// awake() or asleep().
std::unique_ptr<Road> makeDeviceRoad();

// A person's command to the kelp-device that KELP_DEVICE names, and from there as above.
std::unique_ptr<Road> makeCommandRoad();

// A signal through a dbus-daemon of its own to a receiver that uses sd-bus.
std::unique_ptr<Road> makeBusRoad();

} // namespace kelp::bench
