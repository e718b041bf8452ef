// SPDX-License-Identifier: Apache-2.0
// One line of PPS text, taken apart without a copy: what the decoder and the device's store both begin with.
#pragma once

#include <cstdint>
#include <string_view>

namespace kelp::pps {

enum class Encoding : std::uint8_t {
    Text,    // "" and every encoding that nobody knows
    Escaped, // "c"
    Number,  // "n"
    Bool,    // "b"
    Json,    // "json"
    Base64,  // "b64"
};

struct Line {
    enum class Kind : std::uint8_t {
        Object,    // flags '@' name
        Attribute, // flags name ':' encoding ':' value
        Deleted,   // a flagged name alone, of an attribute or (isObject) of an object
    };
    Kind kind = Kind::Attribute;
    bool isObject = false;  // the name follows an '@'
    std::uint8_t flags = 0; // of enum pps_flags
    Encoding encoding = Encoding::Text;
    std::string_view name;  // without flags and '@'; never empty
    std::string_view tail;  // Attribute: "encoding:value" as it stands
    std::string_view value; // Attribute
};

// Takes the next line off a text, with its line feed. False, with the text as it was, for a line that is unterminated or
// malformed: no or an empty name, a control character in the name, no two colons, a name alone without the deleted flag.
// Says nothing of the value and of UTF-8.
bool takeLine(std::string_view &text, Line &line);

// Whether a value is one that its encoding can have (a number, "true" or "false", escapes, JSON within the nesting limit,
// base 64 of UTF-8 text), without an integer beyond 64 bits, which is a number but fits no reader of integers. UTF-8 of the
// line itself is not looked at.
bool isValid(Encoding encoding, std::string_view value);

// Whether all of a text is UTF-8 without NUL.
bool isUtf8(std::string_view text);

} // namespace kelp::pps
