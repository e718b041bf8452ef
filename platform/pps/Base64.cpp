// SPDX-License-Identifier: Apache-2.0
// Base 64 in its standard alphabet, with its padding.
#include "Base64.h"
#include "Line.h"

namespace kelp::pps {

namespace {

constexpr int NONE = -1;

int base64Digit(char digit)
{
    if (digit >= 'A' && digit <= 'Z') {
        return digit - 'A';
    }
    if (digit >= 'a' && digit <= 'z') {
        return digit - 'a' + 26;
    }
    if (digit >= '0' && digit <= '9') {
        return digit - '0' + 52;
    }
    return digit == '+' ? 62 : digit == '/' ? 63 : NONE;
}

// Four digits, of which the last ones may be padding, as three bytes or fewer. Returns their number, or NONE.
int readGroup(const char *from, bool isLast, char *out)
{
    const int count = !isLast || from[3] != '=' ? 4 : from[2] != '=' ? 3 : 2;
    int bits = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = i < count ? base64Digit(from[i]) : 0;
        if (digit == NONE) {
            return NONE;
        }
        bits = bits << 6 | digit;
    }
    for (int i = 0; i < count - 1; ++i) {
        out[i] = static_cast<char>(bits >> (16 - 8 * i));
    }
    return count - 1;
}

} // namespace

bool undoBase64(char *from, char *end)
{
    if ((end - from) % 4 != 0) {
        return false;
    }
    char *out = from;
    for (const char *at = from; at != end; at += 4) {
        const int count = readGroup(at, end - at == 4, out);
        if (count == NONE) {
            return false;
        }
        out += count;
    }
    *out = '\0';
    return isUtf8({from, out});
}

} // namespace kelp::pps
