// SPDX-License-Identifier: Apache-2.0
// What a string holds that decides how it is written, found while it is copied to where it would stand as it
// is.
#pragma once

#include "Words.h"

#include <string_view>

namespace kelp::pps {

// A set of these.
using Contents = unsigned;

constexpr Contents HAS_CONTROL = 1; // but not 0x7f
constexpr Contents HAS_DELETE = 2;  // 0x7f
constexpr Contents HAS_BACKSLASH = 4;
constexpr Contents HAS_QUOTE = 8;
constexpr Contents HAS_COLON = 16;
constexpr Contents IS_BEYOND_ASCII = 0x80;

// The contents that each byte stands for.
inline Bytes contentsOfEach(Bytes bytes)
{
    const auto where = [](auto holds, Contents contents) {
        return reinterpret_cast<Bytes>(holds) & static_cast<unsigned char>(contents);
    };
    return where(bytes < 0x20, HAS_CONTROL) | where(bytes == 0x7f, HAS_DELETE) |
           where(bytes == '\\', HAS_BACKSLASH) | where(bytes == '"', HAS_QUOTE) |
           where(bytes == ':', HAS_COLON) | (bytes & static_cast<unsigned char>(IS_BEYOND_ASCII));
}

// Copies a part, and again the same or a later one.
template <typename Part>
Part copyPart(char *to, const char *from)
{
    Part part;
    std::memcpy(&part, from, sizeof part);
    std::memcpy(to, &part, sizeof part);
    return part;
}

// For texts of fewer than sixteen bytes: two parts that overlap, in a vector filled up with letters.
inline Contents copyShort(char *to, const char *from, std::size_t size)
{
    constexpr Word LETTERS = EACH_BYTE * 'a';
    Word first = LETTERS;
    Word second = LETTERS;
    if (size >= sizeof(Word)) {
        first = copyPart<Word>(to, from);
        second = copyPart<Word>(to + size - sizeof(Word), from + size - sizeof(Word));
    } else if (size >= sizeof(std::uint32_t)) {
        constexpr std::size_t HALF = sizeof(std::uint32_t);
        first = copyPart<std::uint32_t>(to, from) | LETTERS << 32;
        second = copyPart<std::uint32_t>(to + size - HALF, from + size - HALF) | LETTERS << 32;
    } else {
        for (std::size_t i = 0; i < size; ++i) {
            first = first << 8 | static_cast<unsigned char>(copyPart<char>(to + i, from + i));
        }
    }
    return anyOf(contentsOfEach(join(first, second)));
}

// Copies a text without NUL, which does not overlap its copy.
inline Contents copy(char *to, std::string_view text)
{
    const std::size_t size = text.size();
    const char *const from = text.data();
    if (size < VECTOR_BYTES) {
        return copyShort(to, from, size);
    }
    const std::size_t last = size - VECTOR_BYTES;
    Bytes found{};
    for (std::size_t at = 0; at < last; at += VECTOR_BYTES) {
        found |= contentsOfEach(copyPart<Bytes>(to + at, from + at));
    }
    return anyOf(found | contentsOfEach(copyPart<Bytes>(to + last, from + last)));
}

} // namespace kelp::pps
