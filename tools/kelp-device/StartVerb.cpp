// SPDX-License-Identifier: Apache-2.0
// kelp-device start: a device that stays until it is stopped, as a daemon or in the foreground.

#include "CommandOptions.h"
#include "Daemon.h"
#include "DeviceLocation.h"
#include "Failure.h"
#include "Verb.h"
#include "device/Device.h"

#include <iostream>
#include <memory>

namespace kelp::tool {

namespace {

struct StartOptions {
    SetUpOptions setUp;
    std::string trace; // a path; empty: in the device's directory
    bool staysInForeground = false;
};

int runDevice(const std::string &path, const std::string &trace, device::DeviceOptions options,
              const std::function<void()> &ready)
{
    device::DeviceDirectory directory = device::DeviceDirectory::at(path); // first: the trace may lie in it
    options.trace = traceTo(trace);
    device::Device device(std::move(directory), std::move(options));
    ready();
    return device.run();
}

int start(const StartOptions &options)
{
    // A daemon leaves this directory: all paths are to be absolute before it does.
    const std::string path = deviceDirectory(options.setUp.device);
    const std::string trace = options.trace.empty() ? path + "/trace.log" : absolutePath(options.trace);
    const device::DeviceOptions deviceOptions = options.setUp.deviceOptions();
    const auto announce = [&path] {
        std::cout << "KELP_DEVICE=" << shellQuoted(path) << "; export KELP_DEVICE;" << std::endl;
    };
    try {
        if (options.staysInForeground) {
            return runDevice(path, trace, deviceOptions, announce);
        }
        const auto body = [&](const std::function<void()> &ready) {
            return runDevice(path, trace, deviceOptions, ready);
        };
        if (const std::optional<int> daemonsCode = runAsDaemon(body)) {
            return *daemonsCode;
        }
    } catch (const Failure &) {
        throw;
    } catch (const std::exception &error) {
        throw Failure(EXIT_REFUSED, error.what());
    }
    announce();
    return EXIT_HELD;
}

} // namespace

Action addStart(const Command &verb, const Invocation &)
{
    const auto options = std::make_shared<StartOptions>();
    options->setUp.addTo(verb, "Put the device here");
    verb.add("--trace", options->trace,
             "Trace to this file; without it, to trace.log in the device's directory")
        .typeName("FILE");
    verb.addFlag("--foreground", options->staysInForeground, "Run in the foreground, not as a daemon");
    verb.setFooter("Prints a line for a shell: eval \"$(kelp-device start)\"");
    return [options] {
        return start(*options);
    };
}

} // namespace kelp::tool
