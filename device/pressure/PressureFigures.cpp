// SPDX-License-Identifier: Apache-2.0
// See PressureFigures.h.

#include "PressureFigures.h"

#include <navigator/navigator.h>

#include <charconv>
#include <cstdint>

namespace kelp::device {

namespace {

constexpr int BEGINS = 10'00; // hundredths of a per cent
constexpr int ENDS_BELOW = 5'00;
constexpr int ALL = 100'00;

// Takes what the text has to begin with.
bool take(std::string_view &text, std::string_view expected)
{
    const bool isThere = text.starts_with(expected);
    text.remove_prefix(isThere ? expected.size() : 0);
    return isThere;
}

template <typename Number>
std::optional<Number> takeNumber(std::string_view &text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

// "12.34" as hundredths, without the detour over a double and its locale.
std::optional<int> takePercentage(std::string_view &text)
{
    const auto whole = takeNumber<unsigned>(text);
    if (!whole || *whole > 100 || !take(text, ".")) {
        return std::nullopt;
    }
    const std::size_t before = text.size();
    const auto hundredths = takeNumber<unsigned>(text);
    if (!hundredths || before - text.size() != 2) {
        return std::nullopt;
    }
    const auto value = static_cast<int>(*whole * 100 + *hundredths);
    return value <= ALL ? std::optional<int>(value) : std::nullopt;
}

// Takes one line; returns its average over ten seconds.
std::optional<int> takeLine(std::string_view &text, std::string_view name)
{
    if (!take(text, name) || !take(text, " avg10=")) {
        return std::nullopt;
    }
    const auto average = takePercentage(text);
    const bool isWhole = average && take(text, " avg60=") && takePercentage(text) && take(text, " avg300=") &&
                         takePercentage(text) && take(text, " total=") && takeNumber<std::uint64_t>(text) &&
                         take(text, "\n");
    return isWhole ? average : std::nullopt;
}

} // namespace

std::optional<PressureFigures> PressureFigures::parse(std::string_view text)
{
    const auto some = takeLine(text, "some");
    const auto full = some ? takeLine(text, "full") : std::nullopt;
    if (!full || !text.empty()) {
        return std::nullopt;
    }
    return PressureFigures{*some, *full};
}

int severityAfter(int present, const PressureFigures &figures)
{
    if (figures.full >= BEGINS || (present == NAVIGATOR_MEMORY_CRITICAL && figures.full >= ENDS_BELOW)) {
        return NAVIGATOR_MEMORY_CRITICAL;
    }
    if (figures.some >= BEGINS || (present != NAVIGATOR_MEMORY_CLEAR && figures.some >= ENDS_BELOW)) {
        return NAVIGATOR_MEMORY_LOW;
    }
    return NAVIGATOR_MEMORY_CLEAR;
}

} // namespace kelp::device
