// SPDX-License-Identifier: Apache-2.0
// See PpsKeyCache.h.

#include "PpsKeyCache.h"

#include "Utf8String.h"

#include <cstdint>
#include <cstring>

namespace kelp {

namespace {

std::uint64_t load(const char *bytes, std::size_t size)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, size);
    return word;
}

// Of every byte of a name of up to 16, of the outer ones of a longer.
std::size_t hash(const char *name, std::size_t size)
{
    constexpr std::uint64_t SPREAD = 0x9e3779b97f4a7c15; // odd, with its bits well mixed
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    if (size >= 8) {
        first = load(name, 8);
        last = load(name + size - 8, 8);
    } else if (size >= 4) {
        first = load(name, 4);
        last = load(name + size - 4, 4);
    } else {
        first = load(name, 1);
        last = load(name + size / 2, 1) << 8 | load(name + size - 1, 1);
    }
    const std::uint64_t mixed = (first * SPREAD ^ (last + size)) * SPREAD;
    return static_cast<std::size_t>(mixed >> 56);
}

} // namespace

const QString &PpsKeyCache::key(const char *name)
{
    const std::size_t size = name ? std::strlen(name) : 0;
    if (size == 0 || size > LONGEST) {
        return _uncached = utf8String(name, size);
    }
    Slot &slot = _slots[hash(name, size)];
    if (slot.size != size || std::memcmp(slot.bytes.data(), name, size) != 0) {
        slot.text = utf8String(name, size);
        std::memcpy(slot.bytes.data(), name, size);
        slot.size = size;
    }
    return slot.text;
}

} // namespace kelp
