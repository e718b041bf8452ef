// SPDX-License-Identifier: Apache-2.0
// Reads small files that somebody else has written, within the device's loop: whatever lies at the path, it neither
// waits nor takes more than a bound, and nothing but a regular file is ever opened: not even for a moment, as that would
// let a pipe's writer go on or make a device act. The manifest's and the memory pressure's readers call it.
#pragma once

#include <cstddef>
#include <string>

namespace kelp::device {

struct FileReading {
    bool isMissing = false; // there is no such file, or no process that may be looked at; problem says which
    std::string problem;    // why there is no text, to stand behind the path; empty: there is
    std::string text;
};

// The whole text of a regular file of at most mostBytes. A pipe, a device or a directory is a problem, not a wait. The
// path itself is followed wherever it leads, so it has to come from somebody who may hold up the device.
FileReading readRegularFile(const std::string &path, std::size_t mostBytes);

// The same for what a process has put at a name below its working directory, where nothing is to be relied on: a
// name that leads out of the directory or onto another file system, or a directory on a file system that need not answer
// (see MountType.h), is a problem. A process that is gone, or may not be looked at, has no file.
FileReading readFileOfProcess(int processId, const std::string &name, std::size_t mostBytes);

} // namespace kelp::device
