// SPDX-License-Identifier: Apache-2.0
// See ControlGroup.h.

#include "ControlGroup.h"

#include "KernelText.h"

#include <algorithm>
#include <array>

namespace kelp::platform {

namespace {

// The files of a version, and the figures of memory.stat that make up what can be taken back:
//  - pages of files, recently used or not: clean ones are dropped, changed ones written back first. Pages of
//    shared memory and locked pages are not among them: they go nowhere without swapping;
//  - kernel objects that are kept for speed only, such as directory entries. Version 1 does not tell their
//    size.
// The figures include the group's descendants, which version 1 gives apart, with a prefix.
struct Names {
    const char *limit;
    const char *usage;
    std::array<std::string_view, 3> reclaimable;
};
constexpr Names V1{
    "memory.limit_in_bytes", "memory.usage_in_bytes", {"total_active_file", "total_inactive_file"}};
constexpr Names V2{"memory.max", "memory.current", {"active_file", "inactive_file", "slab_reclaimable"}};

const Names &namesIn(ControlGroupVersion version)
{
    return version == ControlGroupVersion::V1 ? V1 : V2;
}

std::optional<std::uint64_t> numberOfFile(std::string_view text)
{
    return toNumber(takeUpTo(text, '\n'));
}

} // namespace

std::optional<std::uint64_t> ControlGroup::limit() const
{
    return numberOfFile(read(namesIn(_folder.version).limit)); // "max" is no number
}

std::uint64_t ControlGroup::remaining(std::uint64_t limit) const
{
    const std::uint64_t usage = numberOfFile(read(namesIn(_folder.version).usage)).value_or(0);
    // The kernel adds its statistics up a little later than the usage.
    const std::uint64_t kept = usage - std::min(usage, reclaimable(_folder.version, read("memory.stat")));
    return limit - std::min(limit, kept);
}

std::uint64_t ControlGroup::reclaimable(ControlGroupVersion version, std::string_view statistics)
{
    const auto &names = namesIn(version).reclaimable;
    std::uint64_t sum = 0;
    while (!statistics.empty()) {
        std::string_view value = takeUpTo(statistics, '\n');
        const std::string_view name = takeUpTo(value, ' ');
        if (!name.empty() && std::find(names.begin(), names.end(), name) != names.end()) {
            const std::uint64_t size = toNumber(value).value_or(0);
            sum += std::min(size, ~sum);
        }
    }
    return sum;
}

std::string ControlGroup::read(const char *file) const
{
    return kernelText(_folder.path + '/' + file);
}

} // namespace kelp::platform
