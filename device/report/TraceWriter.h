// SPDX-License-Identifier: Apache-2.0
// Writes the device's trace, a line an entry: "TIME PID APPLICATION TEXT", with the device's time in seconds, "-" for
// what an entry does not have, and control characters as \xNN so that a client's text cannot forge a line.
#pragma once

#include "device/navigator/Navigator.h"
#include "platform/link/UniqueFd.h"

#include <cstdint>
#include <string>

namespace kelp::device {

class TraceWriter
{
public:
    static constexpr std::uint64_t MAX_FILE_BYTES = 8'388'608;

    // Writes to standard error.
    TraceWriter() = default;

    // Appends to a file, made if it is missing. At maxBytes it is renamed to path.1, in place of the last one, and
    // a new one begun. Throws std::system_error when it cannot be opened.
    explicit TraceWriter(const std::string &path, std::uint64_t maxBytes = MAX_FILE_BYTES);

    // Writes one line. A line that cannot be written is lost: the device does not fail for want of its trace.
    void write(const TraceEntry &entry);

private:
    void open();
    void rotate();

    std::string _path; // empty: standard error
    std::uint64_t _maxBytes = 0;
    std::uint64_t _writtenBytes = 0;
    bool _rotates = false;
    link::UniqueFd _file;
};

} // namespace kelp::device
