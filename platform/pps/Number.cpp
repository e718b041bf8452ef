// SPDX-License-Identifier: Apache-2.0
// Reads numbers in one pass over their digits: an integer is then known, and a double wherever digits and
// power of ten are both exact as doubles, for one multiplication or division then rounds once. The rest goes
// to std::from_chars(). Writes doubles, those of few decimals by the same rule.
#include "Number.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace kelp::pps {

namespace {

constexpr std::int64_t MOST_DIGITS = 19; // that are sure to fit into 64 bits
constexpr std::uint64_t MOST_EXACT = std::uint64_t(1) << DBL_MANT_DIG;
constexpr double POWERS[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::int64_t LARGEST_POWER = std::size(POWERS) - 1;
constexpr std::int64_t EXPONENT_BOUND = std::numeric_limits<std::int64_t>::max() / 4;

// What the pass over a number has found.
struct Digits {
    const char *begin = nullptr; // with the sign
    const char *end = nullptr;
    bool isNegative = false;
    std::uint64_t value = 0;   // of all digits; right for at most MOST_DIGITS of them
    std::int64_t count = 0;    // of all digits
    std::int64_t fraction = 0; // digits behind the point
    std::int64_t exponent = 0; // as written
};

bool isDigit(char character)
{
    return static_cast<unsigned char>(character - '0') < 10;
}

const char *readDigits(const char *at, std::uint64_t &value)
{
    for (; isDigit(*at); ++at) {
        value = value * 10 + static_cast<std::uint64_t>(*at - '0');
    }
    return at;
}

// Behind the 'e'.
const char *readExponent(const char *at, std::int64_t &exponent)
{
    const bool isNegative = *at == '-';
    at += isNegative || *at == '+';
    if (!isDigit(*at)) {
        return nullptr;
    }
    for (; isDigit(*at); ++at) {
        exponent = std::min(exponent, EXPONENT_BOUND / 10 - 1) * 10 + (*at - '0');
    }
    exponent = isNegative ? -exponent : exponent;
    return at;
}

// Whether the number, beyond the range of doubles, is too large rather than too small for it.
bool isHuge(const Digits &digits)
{
    std::int64_t place = digits.count - digits.fraction; // of the first digit that counts, against the point
    for (const char *at = digits.begin; at != digits.end && !(*at >= '1' && *at <= '9'); ++at) {
        place -= *at == '0';
    }
    return place + digits.exponent > 0;
}

bool toNearest(const Digits &digits, double &real)
{
    const auto result = std::from_chars(digits.begin, digits.end, real);
    if (result.ec == std::errc::result_out_of_range) {
        real = digits.isNegative ? -0.0 : 0.0;
        return !isHuge(digits);
    }
    return std::isfinite(real);
}

bool toReal(const Digits &digits, double &real)
{
    const std::int64_t power = digits.exponent - digits.fraction;
    if (FLT_EVAL_METHOD != 0 || digits.count > MOST_DIGITS || digits.value > MOST_EXACT ||
        power > LARGEST_POWER || power < -LARGEST_POWER) {
        return toNearest(digits, real);
    }
    const auto value = static_cast<double>(digits.isNegative ? -static_cast<std::int64_t>(digits.value)
                                                             : static_cast<std::int64_t>(digits.value));
    real = power < 0 ? value / POWERS[-power] : value * POWERS[power];
    if (digits.value == 0 && digits.isNegative) {
        real = -0.0;
    }
    return true;
}

// The fraction and the exponent, from the character behind the integer's digits. Returns the number's end, or
// null.
const char *readRest(const char *at, Digits &digits)
{
    if (*at == '.') {
        const char *const fraction = ++at;
        at = readDigits(at, digits.value);
        digits.fraction = at - fraction;
        digits.count += digits.fraction;
        if (digits.fraction == 0) {
            return nullptr;
        }
    }
    return (*at | 0x20) == 'e' ? readExponent(at + 1, digits.exponent) : at;
}

// The shortest text for a double that has it within three decimals, as many doubles do; otherwise null.
char *writeShortDouble(char *at, double value)
{
    constexpr double LARGEST = 99999; // from 1e+05 on, an exponent may be shorter
    const double size = std::fabs(value);
    if (!(size > 0 && size <= LARGEST) || FLT_EVAL_METHOD != 0) {
        return nullptr;
    }
    std::int64_t power = 10;
    for (int decimals = 1; decimals <= 3; ++decimals, power *= 10) {
        const double rounded = size * static_cast<double>(power) + 0.5; // nearly: the next line decides
        const auto digits = static_cast<std::int64_t>(rounded);
        if (static_cast<double>(digits) / static_cast<double>(power) == size) {
            *at = '-';
            at = std::to_chars(at + (value < 0), at + LONGEST_NUMBER, digits / power).ptr;
            *at++ = '.';
            for (std::int64_t rest = digits % power, place = power / 10; place > 0; place /= 10) {
                *at++ = static_cast<char>('0' + rest / place % 10);
            }
            return at;
        }
    }
    return nullptr;
}

} // namespace

const char *readNumber(const char *from, Number &number)
{
    constexpr auto LARGEST = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const bool isNegative = *from == '-';
    const char *const first = from + isNegative;
    std::uint64_t value = 0;
    const char *const end = *first == '0' ? first + 1 : readDigits(first, value);
    const std::int64_t count = end - first;
    if (count == 0) {
        return nullptr;
    }
    const bool isInteger = *end != '.' && (*end | 0x20) != 'e';
    if (isInteger && count <= MOST_DIGITS && value <= LARGEST + isNegative) {
        number.kind = Number::Kind::Integer;
        number.integer = static_cast<std::int64_t>(isNegative ? 0 - value : value);
        return end;
    }
    Digits digits{from, end, isNegative, value, count, 0, 0};
    number.kind = isInteger ? Number::Kind::BigInteger : Number::Kind::Real;
    digits.end = isInteger ? end : readRest(end, digits);
    return digits.end && toReal(digits, number.real) ? digits.end : nullptr;
}

char *writeDouble(char *at, double value)
{
    if (char *const end = writeShortDouble(at, value)) {
        return end;
    }
    char *const end = std::to_chars(at, at + LONGEST_NUMBER, value).ptr;
    if (std::any_of(at, end, [](char character) { return character == '.' || character == 'e'; })) {
        return end;
    }
    // It would read back as an integer.
    end[0] = '.';
    end[1] = '0';
    return end + 2;
}

} // namespace kelp::pps
