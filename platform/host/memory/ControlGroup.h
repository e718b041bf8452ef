// SPDX-License-Identifier: Apache-2.0
// What one control group says of the memory of its processes, those of its descendants included; for
// PhysicalMemory.
#pragma once

#include "ControlGroupFolders.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelp::platform {

class ControlGroup
{
public:
    explicit ControlGroup(ControlGroupFolder folder) : _folder(std::move(folder)) {}

    // In bytes; nothing where it cannot be read. Where there is none: nothing, or, in version 1, more than
    // any machine has.
    std::optional<std::uint64_t> limit() const;

    // What is left of a limit, in bytes, once the kernel has taken back what it can: 0 to the limit. A use
    // that cannot be read counts as none.
    std::uint64_t remaining(std::uint64_t limit) const;

    // What the kernel can take back, from the text of the group's memory.stat.
    static std::uint64_t reclaimable(ControlGroupVersion version, std::string_view statistics);

private:
    std::string read(const char *file) const;

    ControlGroupFolder _folder;
};

} // namespace kelp::platform
