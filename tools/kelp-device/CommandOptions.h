// SPDX-License-Identifier: Apache-2.0
// The options that several verbs share.
#pragma once

#include "CommandLine.h"
#include "device/Device.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelp::tool {

// --device of the verbs that talk to a device or start one. path holds the value; empty: not given.
void addDeviceOption(const Command &verb, std::string &path, const std::string &help);

// A number of seconds from 0 to a day. seconds keeps its value where the option is not given.
void addSecondsOption(const Command &verb, const std::string &name, double &seconds, const std::string &help);
void addSecondsOption(const Command &verb, const std::string &name, std::optional<double> &seconds,
                      const std::string &help);

// The options of a device that is to be set up.
struct SetUpOptions {
    std::string device;
    double graceSeconds = 3;
    bool leavesOverstaying = false;
    std::string screen = device::screenSizeText(device::DeviceProperties().size);
    std::string theme = device::DeviceProperties().theme;
    std::string memoryPressure;      // a path; empty: not to be followed
    std::vector<std::string> limits; // NAME=N

    void addTo(const Command &verb, const std::string &deviceHelp);
    // All but the trace; paths are taken from the present working directory.
    device::DeviceOptions deviceOptions() const;
    device::Settings settings() const;
};

// A trace that goes to a file, or to standard error when the path is empty. Throws std::system_error.
std::function<void(const device::TraceEntry &)> traceTo(const std::string &path);

} // namespace kelp::tool
