// SPDX-License-Identifier: Apache-2.0
// Eight or sixteen bytes of a text looked at in one step, where all that reads and writes texts spends its
// time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kelp::pps {

using Word = std::uint64_t;

constexpr std::ptrdiff_t WORD_BYTES = sizeof(Word);
constexpr Word EACH_BYTE = 0x0101010101010101;
constexpr Word TOP_BITS = EACH_BYTE * 0x80;

inline Word loadWord(const char *from)
{
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// The first byte in memory that is not zero.
inline int firstByte(Word word)
{
    return (std::endian::native == std::endian::big ? std::countl_zero(word) : std::countr_zero(word)) / 8;
}

// In vectors that every processor's compiler knows how to make.
using Bytes [[gnu::vector_size(16)]] = unsigned char;

constexpr std::size_t VECTOR_BYTES = sizeof(Bytes);

inline Bytes loadBytes(const char *from)
{
    Bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

using Words [[gnu::vector_size(sizeof(Bytes))]] = Word;

// Sixteen bytes of two words; through memory they would be waited for.
inline Bytes join(Word first, Word second)
{
    return reinterpret_cast<Bytes>(Words{first, second});
}

// All bits that any of the bytes has.
inline unsigned anyOf(Bytes bytes)
{
    const auto words = reinterpret_cast<Words>(bytes);
    Word any = words[0] | words[1];
    any |= any >> 32;
    any |= any >> 16;
    return static_cast<unsigned>(any | any >> 8) & 0xff;
}

// The first byte from a place up to the end for which something holds, told of one byte or of sixteen; or the
// end.
template <typename Holds>
const char *findFirst(const char *at, const char *end, Holds holds)
{
    for (; end - at >= static_cast<std::ptrdiff_t>(VECTOR_BYTES); at += VECTOR_BYTES) {
        const auto found = reinterpret_cast<Words>(holds(loadBytes(at)));
        if (found[0]) {
            return at + firstByte(found[0]);
        }
        if (found[1]) {
            return at + sizeof(Word) + firstByte(found[1]);
        }
    }
    while (at != end && !holds(static_cast<unsigned char>(*at))) {
        ++at;
    }
    return at;
}

} // namespace kelp::pps
