// SPDX-License-Identifier: Apache-2.0
// Undoes escapes and writes them. Strings without escapes, nearly all, are passed sixteen bytes at a time.
#include "Escapes.h"
#include "Line.h"
#include "Words.h"

#include <algorithm>
#include <array>

namespace kelp::pps {

namespace {

constexpr int NONE = -1;
constexpr char HEX[] = "0123456789abcdef";

int hexDigit(char digit)
{
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : NONE;
}

// What a single character behind a backslash means, or 0.
using Escapes = std::array<char, 256>;

constexpr Escapes escapes(std::string_view characters, std::string_view meanings)
{
    Escapes escapes{};
    for (std::size_t i = 0; i < characters.size(); ++i) {
        escapes[static_cast<unsigned char>(characters[i])] = meanings[i];
    }
    return escapes;
}

constexpr Escapes JSON_ESCAPES = escapes("\"\\/bfnrt", "\"\\/\b\f\n\r\t");
constexpr Escapes C_ESCAPES = escapes("\"\\'?abfnrtv", "\"\\'?\a\b\f\n\r\t\v");

// The first character at or behind a place that is a quote, a backslash or a control character of JSON. The
// text ends with one.
char *findSpecial(char *at, const char *end)
{
    const auto isSpecial = [](auto byte) {
        return (byte < 0x20) | (byte == '"') | (byte == '\\');
    };
    return at + (findFirst(at, end, isSpecial) - at);
}

// Four hexadecimal digits, or NONE.
int readUnit(const char *at)
{
    int unit = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = hexDigit(at[i]);
        if (digit == NONE) {
            return NONE;
        }
        unit = unit * 16 + digit;
    }
    return unit;
}

// The character that is written from behind "\u" on, or NONE; at moves behind it.
int readCodePoint(const char *&at)
{
    const int unit = readUnit(at);
    if (unit <= 0 || (unit >= 0xdc00 && unit <= 0xdfff)) {
        return NONE;
    }
    at += 4;
    if (unit < 0xd800 || unit > 0xdfff) {
        return unit;
    }
    const int low = at[0] == '\\' && at[1] == 'u' ? readUnit(at + 2) : NONE;
    if (low < 0xdc00 || low > 0xdfff) {
        return NONE;
    }
    at += 6;
    return 0x10000 + (unit - 0xd800) * 0x400 + (low - 0xdc00);
}

char *writeUtf8(char *out, int codePoint)
{
    const auto put = [&out](int byte) {
        *out++ = static_cast<char>(byte);
    };
    if (codePoint < 0x80) {
        put(codePoint);
        return out;
    }
    if (codePoint < 0x800) {
        put(0xc0 | codePoint >> 6);
    } else {
        if (codePoint < 0x10000) {
            put(0xe0 | codePoint >> 12);
        } else {
            put(0xf0 | codePoint >> 18);
            put(0x80 | (codePoint >> 12 & 0x3f));
        }
        put(0x80 | (codePoint >> 6 & 0x3f));
    }
    put(0x80 | (codePoint & 0x3f));
    return out;
}

// One escape of JSON from behind its backslash; at and out move on. False where it is none.
bool readJsonEscape(const char *&at, char *&out)
{
    const char character = *at++;
    if (character == 'u') {
        const int codePoint = readCodePoint(at);
        out = codePoint == NONE ? out : writeUtf8(out, codePoint);
        return codePoint != NONE;
    }
    *out = JSON_ESCAPES[static_cast<unsigned char>(character)];
    return *out++ != 0;
}

// The number of an escape "\xhh" or "\ooo" from behind its backslash, or NONE.
int readByte(const char *&at, const char *end)
{
    const bool isHex = *at == 'x';
    const int base = isHex ? 16 : 8;
    at += isHex;
    const char *const mostEnd = at + (isHex ? 2 : 3);
    int byte = NONE;
    for (; at != end && at != mostEnd; ++at) {
        const int digit = hexDigit(*at);
        if (digit == NONE || digit >= base) {
            break;
        }
        byte = (byte == NONE ? 0 : byte * base) + digit;
    }
    return byte;
}

// What stands behind a backslash for a control character that has a letter of its own, else 0.
char letterOf(char control)
{
    switch (control) {
    case '\a':
        return 'a';
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    case '\v':
        return 'v';
    default:
        return 0;
    }
}

char *writeHex(char *at, char byte)
{
    *at++ = HEX[byte >> 4 & 0xf];
    *at++ = HEX[byte & 0xf];
    return at;
}

char *writeEscaped(char *at, char byte)
{
    *at++ = '\\';
    *at++ = byte;
    return at;
}

} // namespace

char *readJsonString(char *from, const char *end)
{
    char *special = findSpecial(from, end);
    char *out = special;
    while (*special == '\\') {
        const char *at = special + 1;
        if (!readJsonEscape(at, out)) {
            return nullptr;
        }
        char *const rest = from + (at - from);
        special = findSpecial(rest, end);
        std::memmove(out, rest, static_cast<std::size_t>(special - rest));
        out += special - rest;
    }
    if (*special != '"') {
        return nullptr;
    }
    *out = '\0';
    return special + 1;
}

bool undoEscapes(char *from, char *end)
{
    const char *at = std::find(from, end, '\\');
    char *out = from + (at - from);
    bool isBeyondAscii = false;
    while (at != end) {
        if (*at != '\\') {
            *out++ = *at++;
            continue;
        }
        if (++at == end) {
            return false;
        }
        int byte = static_cast<unsigned char>(C_ESCAPES[static_cast<unsigned char>(*at)]);
        if (byte != 0) {
            ++at;
        } else if ((byte = readByte(at, end)) <= 0 || byte > 0xff) {
            return false;
        }
        isBeyondAscii |= byte > 0x7f;
        *out++ = static_cast<char>(byte);
    }
    *out = '\0';
    return !isBeyondAscii || isUtf8({from, out});
}

char *writeWithCEscapes(char *at, std::string_view text)
{
    for (const char byte : text) {
        if (byte == '\\') {
            at = writeEscaped(at, byte);
        } else if (static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7f) {
            *at++ = byte;
        } else if (letterOf(byte)) {
            at = writeEscaped(at, letterOf(byte));
        } else {
            at = writeHex(writeEscaped(at, 'x'), byte);
        }
    }
    return at;
}

char *writeWithJsonEscapes(char *at, std::string_view text)
{
    for (const char byte : text) {
        if (byte == '\\' || byte == '"') {
            at = writeEscaped(at, byte);
        } else if (static_cast<unsigned char>(byte) >= 0x20) {
            *at++ = byte;
        } else if (letterOf(byte) && byte != '\a' && byte != '\v') {
            at = writeEscaped(at, letterOf(byte));
        } else {
            at = writeHex(std::copy_n("\\u00", 4, at), byte);
        }
    }
    return at;
}

} // namespace kelp::pps
