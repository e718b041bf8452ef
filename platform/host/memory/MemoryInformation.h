// SPDX-License-Identifier: Apache-2.0
// What /proc/meminfo says of the whole machine, for PhysicalMemory.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kelp::platform {

struct MemoryInformation {
    // In bytes; nothing where the text has no such figure.
    std::optional<std::uint64_t> total;
    std::optional<std::uint64_t>
        available; // free, or taken back at need without swapping, by the kernel's estimate

    static MemoryInformation parse(std::string_view meminfo);
};

} // namespace kelp::platform
