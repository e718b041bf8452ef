// SPDX-License-Identifier: Apache-2.0
// A number as it stands in a text, by JSON's grammar: for values of PPS lines and in JSON alike.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kelp::pps {

struct Number {
    enum class Kind : std::uint8_t {
        Integer,    // within 64 bits
        BigInteger, // neither fraction nor exponent, but beyond them
        Real,
    };
    Kind kind = Kind::Integer;
    union {
        std::int64_t integer = 0; // Integer
        double real;              // else; the nearest double
    };
};

// Reads the number that begins there and ends before some other character, and returns its end; nullptr where
// there is none or it is beyond every double.
const char *readNumber(const char *from, Number &number);

constexpr std::size_t LONGEST_NUMBER = 32; // and more than any that is written

// Writes a finite double in the shortest way that reads back as the same one and as no integer; returns its
// end.
char *writeDouble(char *at, double value);

} // namespace kelp::pps
