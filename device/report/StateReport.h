// SPDX-License-Identifier: Apache-2.0
// The state of the device as JSON, one object a line: first the device, then each application. The command line, and
// whoever reads its --json, get just this.
#pragma once

#include "device/navigator/Navigator.h"

#include <string>
#include <vector>

namespace kelp::device {

// What is to be told of the device itself.
struct DeviceState {
    pid_t pid = 0;
    std::string directory;
    const Clock &clock;
    std::size_t applications = 0;
    Screen screen = {};
    std::optional<int> memorySeverity = {}; // enum navigator_severity; nothing: it does not follow that
    std::size_t launches = 0;               // of applications, since the device started
};

// The device's line: {"type":"device", ...}.
std::string deviceReport(const DeviceState &device);

// The device's line and one {"type":"application", ...} for each application, in the order given. Text that is no
// UTF-8 stands with replacement characters.
std::string stateReport(const DeviceState &device, const std::vector<ApplicationState> &applications);

} // namespace kelp::device
