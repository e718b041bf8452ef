// SPDX-License-Identifier: Apache-2.0
// Finds the control groups that the process's memory counts in, for PhysicalMemory. Reads nothing by itself.
#pragma once

#include "ControlGroupMount.h"

#include <string>
#include <string_view>
#include <vector>

namespace kelp::platform {

struct ControlGroupFolder {
    ControlGroupVersion version;
    std::string path;
};

// The folders of the process's group and of its ancestors, in every hierarchy that can limit memory, as far
// as they are mounted; from the texts of /proc/self/cgroup and /proc/self/mountinfo. A folder need not exist:
// a group may have been deleted, or be out of sight. In version 1 too, a group's limit is taken to hold for the groups
// below it, as it always does from Linux 5.11 on.
std::vector<ControlGroupFolder> controlGroupFolders(std::string_view groups, std::string_view mounts);

} // namespace kelp::platform
