// SPDX-License-Identifier: Apache-2.0
// The physical memory that this process can use: the machine's, or what the process's control groups leave of
// it. The system page and devicefs ask here.
#pragma once

#include "ControlGroup.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelp::platform {

// Each question throws std::system_error where descriptors or memory have run out.
class PhysicalMemory
{
public:
    // root: in front of each path that is read.
    explicit PhysicalMemory(std::string root = {}) : _root(std::move(root)) {}

    // The machine's, or the smallest limit of the process's control group and its ancestors where that is
    // less, in bytes. Nothing where the kernel does not tell the machine's.
    std::optional<std::uint64_t> total() const;

    // What can be had without swapping: of the machine, or, where that is less, of the limited control group
    // that has the least left; in bytes. Nothing where the kernel does not tell the machine's.
    std::optional<std::uint64_t> available() const;

private:
    std::string read(const char *path) const;
    std::vector<ControlGroup> groups() const;

    std::string _root;
};

} // namespace kelp::platform
