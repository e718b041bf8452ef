// SPDX-License-Identifier: Apache-2.0
// The paths below "/proc" that mean to devicefs what they mean on the device: "/proc" itself, whose size is
// the free memory, and "/proc/<pid>/as", a process's address space, whose size is the memory that the process
// uses.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelp::platform {

class ProcEntry
{
public:
    // The entry at a path; nothing for any other path.
    static std::optional<ProcEntry> at(std::string_view path);

    // Each returns 0 or an errno, as devicefs.h documents it.
    int access(int mode) const;
    int size(std::int64_t &bytes) const;

private:
    explicit ProcEntry(std::string process) : _process(std::move(process)) {}

    std::string _process; // the folder of the process; empty: "/proc" itself
};

} // namespace kelp::platform
