// SPDX-License-Identifier: Apache-2.0
// Reads small files that somebody else has written, within the device's loop: whatever lies at the path, it neither
// waits nor takes more than a bound. The manifest's and the memory pressure's readers call it.
#pragma once

#include <cstddef>
#include <string>

namespace kelp::device {

struct FileReading {
    bool isReached = false; // there is something at the path, and it may be opened
    std::string problem;    // why there is no text, to stand behind the path; empty: there is
    std::string text;
};

// The whole text of a regular file of at most mostBytes. A pipe, a device or a directory is a problem, not a wait.
FileReading readRegularFile(const std::string &path, std::size_t mostBytes);

} // namespace kelp::device
