// SPDX-License-Identifier: Apache-2.0
// See Road.h. The device's loop runs only until the application is there: sending needs no loop.

#include "Road.h"

#include "device/Device.h"
#include "device/loop/EventLoop.h"

#include <stdexcept>
#include <thread>

namespace kelp::bench {

namespace {

class DeviceRoad : public Road
{
public:
    DeviceRoad()
    {
        startReceiver(
            {"env", "KELP_DEVICE=" + _device.directory(), siblingProgram("bench_application"), "moments"});
        std::thread loop([this] { _device.run(); });
        (void)arrival(); // launched: full screen and active
        _device.loop().stop();
        loop.join();
    }

    void send(bool active) override
    {
        const device::Outcome outcome = _device.navigator().event(active ? "activate" : "deactivate", {});
        if (outcome.error) {
            throw std::runtime_error("the device refuses: " + outcome.text);
        }
    }

private:
    device::Device _device{device::DeviceDirectory::temporaryIn("/tmp"), {}};
};

} // namespace

std::unique_ptr<Road> makeDeviceRoad()
{
    return std::make_unique<DeviceRoad>();
}

} // namespace kelp::bench
