// SPDX-License-Identifier: Apache-2.0
// The device's screen: its size and theme, which applications choose their assets by, and the angle at which it is
// held. Plain values, and the one reading of them from text, for commands and options alike.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kelp::device {

struct ScreenSize {
    int width = 0; // pixels
    int height = 0;
    bool operator==(const ScreenSize &) const = default;
};

// What the device is, as applications see it.
struct DeviceProperties {
    ScreenSize size{768, 1280};   // held upright
    std::string theme = "bright"; // or "dark"
};

inline constexpr std::array ANGLES = {0, 90, 180, 270};

struct Screen {
    DeviceProperties properties;
    int angle = 0; // degrees clockwise from upright, one of ANGLES
};

// A size of the form "768x1280" within its bounds; nothing for any other text.
std::optional<ScreenSize> parseScreenSize(std::string_view text);
std::string screenSizeText(const ScreenSize &size);

bool isTheme(std::string_view text);
bool isAngle(int angle);

// The size of the screen as it is seen at an angle: width and height change places on its sides.
ScreenSize sizeAt(const ScreenSize &upright, int angle);

} // namespace kelp::device
