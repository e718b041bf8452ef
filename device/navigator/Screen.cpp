// SPDX-License-Identifier: Apache-2.0
// See Screen.h.

#include "Screen.h"

#include <algorithm>
#include <charconv>

namespace kelp::device {

namespace {

constexpr int MAX_PIXELS = 16384;

// 0 for what is no number.
int pixels(std::string_view text)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

bool isInRange(int value)
{
    return value >= 1 && value <= MAX_PIXELS;
}

} // namespace

std::optional<ScreenSize> parseScreenSize(std::string_view text)
{
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) {
        return std::nullopt;
    }
    const ScreenSize size = {pixels(text.substr(0, cross)), pixels(text.substr(cross + 1))};
    // Assets are found by a folder of this very name, so a size has one spelling: no leading zeros.
    const bool isSize = isInRange(size.width) && isInRange(size.height) && screenSizeText(size) == text;
    return isSize ? std::optional(size) : std::nullopt;
}

std::string screenSizeText(const ScreenSize &size)
{
    return std::to_string(size.width) + 'x' + std::to_string(size.height);
}

bool isTheme(std::string_view text)
{
    return text == "bright" || text == "dark";
}

bool isAngle(int angle)
{
    return std::find(ANGLES.begin(), ANGLES.end(), angle) != ANGLES.end();
}

ScreenSize sizeAt(const ScreenSize &upright, int angle)
{
    const bool liesOnItsSide = angle == 90 || angle == 270;
    return liesOnItsSide ? ScreenSize{upright.height, upright.width} : upright;
}

} // namespace kelp::device
