// SPDX-License-Identifier: Apache-2.0
// See MemoryInformation.h.

#include "MemoryInformation.h"

#include "KernelText.h"

#include <limits>

namespace kelp::platform {

namespace {

// "  24684092 kB" in bytes.
std::optional<std::uint64_t> toBytes(std::string_view value)
{
    constexpr std::uint64_t UNIT = 1024;
    skipSpaces(value);
    const auto count = toNumber(takeUpTo(value, ' '));
    if (!count || value != "kB" || *count > std::numeric_limits<std::uint64_t>::max() / UNIT) {
        return std::nullopt;
    }
    return *count * UNIT;
}

} // namespace

MemoryInformation MemoryInformation::parse(std::string_view meminfo)
{
    MemoryInformation information;
    while (!meminfo.empty()) {
        std::string_view value = takeUpTo(meminfo, '\n');
        const std::string_view name = takeUpTo(value, ':');
        if (name == "MemTotal") {
            information.total = toBytes(value);
        } else if (name == "MemAvailable") {
            information.available = toBytes(value);
        }
    }
    return information;
}

} // namespace kelp::platform
