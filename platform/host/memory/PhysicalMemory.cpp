// SPDX-License-Identifier: Apache-2.0
// See PhysicalMemory.h.

#include "PhysicalMemory.h"

#include "KernelText.h"
#include "MemoryInformation.h"

#include <algorithm>

namespace kelp::platform {

std::optional<std::uint64_t> PhysicalMemory::total() const
{
    auto total = MemoryInformation::parse(read("/proc/meminfo")).total;
    if (!total) {
        return std::nullopt;
    }
    for (const ControlGroup &group : groups()) {
        total = std::min(*total, group.limit().value_or(*total));
    }
    return total;
}

std::optional<std::uint64_t> PhysicalMemory::available() const
{
    const auto machine = MemoryInformation::parse(read("/proc/meminfo"));
    auto available = machine.available;
    if (!available) {
        return std::nullopt;
    }
    for (const ControlGroup &group : groups()) {
        const auto limit = group.limit();
        if (limit &&
            (!machine.total || *limit < *machine.total)) { // a limit of more than there is does not bind
            available = std::min(*available, group.remaining(*limit));
        }
    }
    return available;
}

std::string PhysicalMemory::read(const char *path) const
{
    return kernelText(_root + path);
}

// Found anew each time: a process can be moved to another group, and groups can be mounted later.
std::vector<ControlGroup> PhysicalMemory::groups() const
{
    std::vector<ControlGroup> groups;
    for (ControlGroupFolder &folder :
         controlGroupFolders(read("/proc/self/cgroup"), read("/proc/self/mountinfo"))) {
        groups.emplace_back(ControlGroupFolder{folder.version, _root + folder.path});
    }
    return groups;
}

} // namespace kelp::platform
