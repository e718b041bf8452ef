// SPDX-License-Identifier: Apache-2.0
// Counts sixteen bytes at a time.
#include "Survey.h"
#include "Words.h"

#include <algorithm>

namespace kelp::pps {

namespace {

constexpr std::ptrdiff_t MOST_BYTES = 255 * sizeof(Bytes); // before a lane's count could overflow
constexpr unsigned char CASE = '{' ^ '[';

// All bits set in each lane that stands before a value.
Bytes beforeValue(Bytes bytes)
{
    return reinterpret_cast<Bytes>((bytes == '\n') | (bytes == ',') | ((bytes | CASE) == '{'));
}

// By adding neighbours first, for a byte cannot hold a sum.
std::size_t sum(Bytes counts)
{
    constexpr Word EVEN = 0x00ff00ff00ff00ff;
    constexpr Word EACH_PAIR = 0x0001000100010001;
    const auto words = reinterpret_cast<Words>(counts);
    const Words pairs = (words & EVEN) + (words >> 8 & EVEN);
    return (pairs[0] + pairs[1]) * EACH_PAIR >> 48;
}

Survey surveyShort(std::string_view text)
{
    Survey survey{1 + text.size(), true};
    for (const char byte : text) {
        survey.isAscii &= byte >= 0;
    }
    return survey;
}

} // namespace

Survey survey(std::string_view text)
{
    if (text.size() < VECTOR_BYTES) {
        return surveyShort(text);
    }
    const char *at = text.data();
    const char *const last = at + text.size() - VECTOR_BYTES;
    Bytes seen = loadBytes(last);
    Survey survey{1 + sum(-beforeValue(seen)), true}; // some of the last bytes count twice
    while (at < last) {
        Bytes counts{};
        const char *const stop = at + std::min(last - at, MOST_BYTES);
        for (; at < stop; at += VECTOR_BYTES) {
            const Bytes bytes = loadBytes(at);
            counts -= beforeValue(bytes);
            seen |= bytes;
        }
        survey.nodes += sum(counts);
    }
    survey.isAscii = anyOf(seen) < 0x80;
    return survey;
}

} // namespace kelp::pps
