// SPDX-License-Identifier: Apache-2.0
// The check that a text is UTF-8: in the shortest form, without surrogates and beyond-the-end characters, as
// the standard's table of well-formed sequences has it.
#include "Line.h"
#include "Words.h"

namespace kelp::pps {

namespace {

bool isBetween(char byte, unsigned char least, unsigned char most)
{
    return static_cast<unsigned char>(byte) >= least && static_cast<unsigned char>(byte) <= most;
}

bool isContinuation(char byte)
{
    return (byte & 0xc0) == 0x80;
}

// The bytes of the sequence that begins with a byte beyond ASCII, or 0 where it is none.
int sequenceLength(const char *from, const char *end)
{
    const auto lead = static_cast<unsigned char>(*from);
    if (lead < 0xe0) {
        return lead >= 0xc2 && end - from >= 2 && isContinuation(from[1]) ? 2 : 0;
    }
    if (lead < 0xf0) {
        const unsigned char least = lead == 0xe0 ? 0xa0 : 0x80;
        const unsigned char most = lead == 0xed ? 0x9f : 0xbf;
        return end - from >= 3 && isBetween(from[1], least, most) && isContinuation(from[2]) ? 3 : 0;
    }
    const unsigned char least = lead == 0xf0 ? 0x90 : 0x80;
    const unsigned char most = lead == 0xf4 ? 0x8f : 0xbf;
    return lead <= 0xf4 && end - from >= 4 && isBetween(from[1], least, most) && isContinuation(from[2]) &&
                   isContinuation(from[3])
               ? 4
               : 0;
}

} // namespace

bool isUtf8(std::string_view text)
{
    const char *at = text.data();
    const char *const end = at + text.size();
    while (at != end) {
        at = findFirst(at, end, [](auto byte) { return (byte == 0) | (byte > 0x7f); });
        if (at == end) {
            return true;
        }
        const int length = *at == 0 ? 0 : sequenceLength(at, end);
        if (length == 0) {
            return false;
        }
        at += length;
    }
    return true;
}

} // namespace kelp::pps
