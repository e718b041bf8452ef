// SPDX-License-Identifier: Apache-2.0
// The checks and the escaping, byte by byte and independent of any locale. Called for every text of a client
// that is kept or repeated.
#include "ClientText.h"

#include "platform/link/Limits.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kelp::device {

namespace {

constexpr std::size_t SHOWN_BYTES = 100; // of a text within a line
constexpr std::size_t LINE_BYTES = 200;  // of a text that has a line, or a cell of a table, for itself
constexpr std::string_view REPLACEMENT = "\xef\xbf\xbd";

// A sequence of UTF-8 by its first byte; the second byte's range excludes overlong forms, surrogates and what
// lies beyond the last code point.
struct Utf8Form {
    std::uint8_t first, last; // of the first byte
    std::uint8_t secondLeast, secondMost;
    std::size_t size;
};
constexpr std::array UTF8_FORMS = {
    Utf8Form{0x00, 0x7f, 0x00, 0x00, 1}, Utf8Form{0xc2, 0xdf, 0x80, 0xbf, 2},
    Utf8Form{0xe0, 0xe0, 0xa0, 0xbf, 3}, Utf8Form{0xe1, 0xec, 0x80, 0xbf, 3},
    Utf8Form{0xed, 0xed, 0x80, 0x9f, 3}, Utf8Form{0xee, 0xef, 0x80, 0xbf, 3},
    Utf8Form{0xf0, 0xf0, 0x90, 0xbf, 4}, Utf8Form{0xf1, 0xf3, 0x80, 0xbf, 4},
    Utf8Form{0xf4, 0xf4, 0x80, 0x8f, 4},
};

std::uint8_t byteAt(std::string_view text, std::size_t index)
{
    return static_cast<std::uint8_t>(text[index]);
}

bool isPrintableAscii(char character)
{
    return character >= ' ' && character <= '~';
}

// The size in bytes of the code point that text begins with; 0 where it begins with none. text is not empty.
std::size_t utf8Size(std::string_view text)
{
    const std::uint8_t first = byteAt(text, 0);
    const auto form = std::find_if(UTF8_FORMS.begin(), UTF8_FORMS.end(), [first](const Utf8Form &candidate) {
        return first >= candidate.first && first <= candidate.last;
    });
    if (form == UTF8_FORMS.end() || text.size() < form->size) {
        return 0;
    }
    if (form->size > 1 && (byteAt(text, 1) < form->secondLeast || byteAt(text, 1) > form->secondMost)) {
        return 0;
    }
    for (std::size_t index = 2; index < form->size; ++index) {
        if ((byteAt(text, index) & 0xc0) != 0x80) {
            return 0;
        }
    }
    return form->size;
}

// Of one code point: a control character of ASCII or of what follows it, or an end of a line.
bool isControl(std::string_view codePoint)
{
    const std::uint8_t first = byteAt(codePoint, 0);
    if (codePoint.size() == 1) {
        return first < 0x20 || first == 0x7f;
    }
    return (first == 0xc2 && byteAt(codePoint, 1) < 0xa0) || codePoint == "\xe2\x80\xa8" ||
           codePoint == "\xe2\x80\xa9";
}

std::string escaped(char character)
{
    if (character == '\n') {
        return "\\n";
    }
    if (character == '"' || character == '\\') {
        return {'\\', character};
    }
    if (isPrintableAscii(character)) {
        return {character};
    }
    constexpr std::string_view DIGITS = "0123456789abcdef";
    const auto byte = static_cast<std::uint8_t>(character);
    return {'\\', 'x', DIGITS[byte >> 4], DIGITS[byte & 0xf]};
}

} // namespace

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t size = utf8Size(text);
        if (size == 0) {
            return false;
        }
        text.remove_prefix(size);
    }
    return true;
}

bool isId(std::string_view text)
{
    return !text.empty() && text.size() <= link::MAX_ID_BYTES &&
           std::all_of(text.begin(), text.end(), isPrintableAscii);
}

std::string inQuotes(std::string_view text)
{
    std::string line = "\"";
    for (const char character : text.substr(0, SHOWN_BYTES)) {
        line += escaped(character);
    }
    return line + (text.size() > SHOWN_BYTES ? "...\"" : "\"");
}

std::string onOneLine(std::string_view text)
{
    std::string line;
    while (!text.empty()) {
        const std::size_t size = utf8Size(text);
        const std::string_view codePoint = text.substr(0, size);
        const std::string_view shown = size == 0 || isControl(codePoint) ? REPLACEMENT : codePoint;
        if (line.size() + shown.size() > LINE_BYTES) {
            return line + "...";
        }
        line += shown;
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return line;
}

} // namespace kelp::device
