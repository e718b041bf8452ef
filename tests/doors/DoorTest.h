// SPDX-License-Identifier: Apache-2.0
// A real device, running on a thread of the test's own process in a directory of its own.
#pragma once

#include "DoorClient.h"
#include "device/Device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace kelp::test {

class DoorTest : public testing::Test
{
protected:
    ~DoorTest() override { stopDevice(); }

    void startDevice(device::DoorLimits limits = {}, device::StoreLimits storeLimits = {})
    {
        device::DeviceOptions options;
        options.limits = limits;
        options.storeLimits = storeLimits;
        options.trace = [this](const device::TraceEntry &entry) {
            const std::lock_guard lock(_mutex);
            _trace.push_back(entry.text);
            _changed.notify_all();
        };
        _device.emplace(device::DeviceDirectory::temporaryIn("/tmp"), std::move(options));
        _thread = std::thread([this] { _device->run(); });
    }

    void stopDevice()
    {
        if (_thread.joinable()) {
            _device->stop();
            _device->stop(); // at once
            _thread.join();
            _device.reset();
        }
    }

    const std::string &directory() const { return _device->directory(); }

    DoorClient application() const { return {directory(), link::Role::Application}; }
    DoorClient control() const { return {directory(), link::Role::Control}; }

    // Whether a line with that text stands in the trace, or comes to.
    bool traces(const std::string &text)
    {
        std::unique_lock lock(_mutex);
        return _changed.wait_for(lock, WAIT_TIME, [&] {
            return std::any_of(_trace.begin(), _trace.end(),
                               [&](const std::string &line) { return line.find(text) != std::string::npos; });
        });
    }

private:
    std::mutex _mutex; // guards _trace
    std::condition_variable _changed;
    std::vector<std::string> _trace;
    std::optional<device::Device> _device;
    std::thread _thread;
};

} // namespace kelp::test
