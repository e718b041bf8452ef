// SPDX-License-Identifier: Apache-2.0
// See System.h.

#include "DeviceObject.h"
#include "DeviceProcess.h"
#include "System.h"

#include <cstdlib>

namespace kelp::bench {

namespace {

class ObjectPublisher : public Publisher
{
public:
    explicit ObjectPublisher(const std::string &path) : _object(path, O_WRONLY) {}
    void publish(const Update &update) override { _object.write(update); }

private:
    DeviceObject _object;
};

class ObjectSubscriber : public Subscriber
{
public:
    explicit ObjectSubscriber(const std::string &path) : _object(path, O_RDONLY) {}
    int descriptor() const override { return _object.descriptor(); }
    void take(const Sink &sink) override { sink(_object.read()); }

private:
    DeviceObject _object;
};

class DeviceSystem : public System
{
public:
    DeviceSystem() { ::setenv("KELP_DEVICE", _device.directory().c_str(), 1); }

    std::unique_ptr<Publisher> publisher(const std::string &topic) override
    {
        return std::make_unique<ObjectPublisher>("/pps/bench/" + topic);
    }

    std::unique_ptr<Subscriber> subscriber(const std::string &topic) override
    {
        return std::make_unique<ObjectSubscriber>("/pps/bench/" + topic);
    }

private:
    DeviceProcess _device;
};

} // namespace

std::unique_ptr<System> makeDeviceSystem()
{
    return std::make_unique<DeviceSystem>();
}

} // namespace kelp::bench
