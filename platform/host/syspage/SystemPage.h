// SPDX-License-Identifier: Apache-2.0
// The system page of syspage.h as one block: its header, and behind it the tables that the header tells the
// places of.
#pragma once

#include <sys/syspage.h>

#include <cstddef>
#include <cstdint>

namespace kelp::platform {

static_assert(sizeof(syspage) == 64 && sizeof(syspage_address_range) == 32);
static_assert(offsetof(syspage, address_space.offset) == 12 && offsetof(syspage, address_space.size) == 14);
static_assert(offsetof(syspage, strings.offset) == 48);
static_assert(offsetof(syspage_address_range, start) == 0 && offsetof(syspage_address_range, end) == 8);
static_assert(offsetof(syspage_address_range, name) == 18);

struct SystemPage {
    // total: physical memory in bytes; 0: not known, and no ranges. Processes do not get to know where on the
    // machine it lies: here it lies at the beginning, in one piece.
    constexpr explicit SystemPage(std::uint64_t total);

    syspage header{};
    syspage_address_range ranges[2]{};
    char strings[12] = "memory\0ram";
};

constexpr SystemPage::SystemPage(std::uint64_t total)
{
    constexpr std::uint16_t MEMORY = 0; // where the names stand in the strings
    constexpr std::uint16_t RAM = 7;
    if (total > 0) {
        ranges[0] = {.start = 0, .end = total - 1, .reserved0 = 0, .name = MEMORY, .reserved1 = {}};
        ranges[1] = {.start = 0, .end = total - 1, .reserved0 = 0, .name = RAM, .reserved1 = {}};
    }
    header.size = sizeof header;
    header.total_size = sizeof *this;
    header.address_space.offset = offsetof(SystemPage, ranges);
    header.address_space.size = total > 0 ? sizeof ranges : 0;
    header.strings.offset = offsetof(SystemPage, strings);
    header.strings.size = sizeof strings;
}

} // namespace kelp::platform
