// SPDX-License-Identifier: Apache-2.0
// A scenario beside the device of its own process: a thread that drives it, and the exit code that comes of both.
#pragma once

#include "ScenarioReport.h"
#include "device/Device.h"

#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace kelp::tool {

class ScenarioSession
{
public:
    // Lets the scenario use the device from within the process for as long as it lives.
    class Hold
    {
    public:
        explicit Hold(ScenarioSession &session) : _session(session) {}
        ~Hold() { _session.release(); }
        Hold(const Hold &) = delete;
        Hold &operator=(const Hold &) = delete;

    private:
        ScenarioSession &_session;
    };

    // Reads the file. Throws Failure, EXIT_USAGE.
    ScenarioSession(const std::string &path, bool json);
    // The device must have gone: what the thread waits for comes or breaks off then.
    ~ScenarioSession();
    ScenarioSession(const ScenarioSession &) = delete;
    ScenarioSession &operator=(const ScenarioSession &) = delete;

    // To be called once, before the device runs: the scenario starts the application on it, when it is there to see it.
    // The hold has to go before the device.
    [[nodiscard]] Hold begin(device::Device &device, device::Launch launch, device::Duration grace);

    // To be called when the device has gone, with the application's exit code. Returns the command's.
    int finish(int applicationsCode);

private:
    void release();
    void start(); // throws std::future_error where the application does not start
    void post(std::function<void(device::Device &)> task);
    void breakOff(const std::string &why);
    void drive(const std::string &deviceDirectory, device::Duration grace);
    bool isCrash(int code) const;
    bool isOurSignal(int signal) const;
    int expectedCode() const;

    Scenario _scenario;
    ScenarioReport _report;
    std::mutex _mutex;                 // guards _device
    device::Device *_device = nullptr; // null: not yet, or no more
    device::Launch _launch;
    std::thread _thread;
    std::size_t _launches = 0; // of applications, once the device has run
    int _stepsCode = 0;        // the thread's, until it is joined, as is
    bool _hasStopped = false;  // see ScenarioRunner
};

} // namespace kelp::tool
