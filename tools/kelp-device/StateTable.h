// SPDX-License-Identifier: Apache-2.0
// The device's reports, which are JSON, as text for people.
#pragma once

#include <string>

namespace kelp::tool {

// Of a report of the device's own line. Throws Failure for what is no such report.
std::string statusText(const std::string &report);

// Of a report of the whole state. Throws Failure for what is no such report.
std::string stateTable(const std::string &report);

} // namespace kelp::tool
