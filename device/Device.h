// SPDX-License-Identifier: Apache-2.0
// The device as an object: clock, navigator, store, loop, doors and children, wired together and nothing else. The kelp-device
// executable owns one, and so does a test that wants a device within its own process:
//
//     Device device(DeviceDirectory::temporaryIn("/tmp"), {});
//     std::thread thread([&] { device.run(); });
//     ...
//     device.stop();
//     thread.join();
//
// Threads: stop() may be called from any thread; all else from the one that calls run(), or before it does.
#pragma once

#include "device/clock/Clock.h"
#include "device/directory/DeviceDirectory.h"
#include "device/doors/DoorLimits.h"
#include "device/navigator/Navigator.h"
#include "device/process/ChildProcesses.h"
#include "device/report/StateObjects.h"
#include "device/store/Store.h"

#include <functional>
#include <memory>
#include <string>

namespace kelp::device {

class EventLoop;

struct DeviceOptions {
    Settings settings;
    DoorLimits limits;
    StoreLimits storeLimits;
    DeviceProperties properties;
    std::string memoryPressureFile; // whose figures are followed, as MemoryPressure does; empty: none
    std::function<void(const TraceEntry &)> trace; // empty: no trace
    // The whole process is the device's: it takes SIGINT, SIGTERM and SIGHUP (those not ignored) as a wish to stop,
    // may launch applications and buries every child of the process.
    bool ownsProcess = false;
};

class Device
{
public:
    // A device that can be reached at once and answers when it runs. Throws std::system_error, and std::runtime_error
    // for a memory-pressure file without figures.
    Device(DeviceDirectory directory, DeviceOptions options);
    ~Device();
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    const std::string &directory() const;
    Clock &clock();
    Navigator &navigator();
    EventLoop &loop();

    // Starts an application on the device, which ends with it. Needs ownsProcess. Throws LaunchError.
    void launch(Launch launch);

    // Runs until the device has shut down, with SIGPIPE blocked on this thread. Returns the exit code of the launched application; 0 without one.
    int run();

    // Shuts down: asks the applications to exit, waits for their grace, then ends what is left. Asked once more, it
    // ends everything at once.
    void stop();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace kelp::device
