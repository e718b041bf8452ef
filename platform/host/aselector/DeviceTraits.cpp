// SPDX-License-Identifier: Apache-2.0
// See DeviceTraits.h.

#include "DeviceTraits.h"

#include <cerrno>
#include <string>

namespace kelp::platform {

int DeviceTraits::read(const aselector_attribute_t *attributes)
{
    for (; attributes->id != ASELECTOR_END; ++attributes) {
        if (const int error = set(*attributes)) {
            return error;
        }
    }
    return 0;
}

std::vector<std::filesystem::path> DeviceTraits::variantDirectories() const
{
    const bool hasScreen = _width && _height;
    const std::filesystem::path screen = std::to_string(_width) + 'x' + std::to_string(_height);
    const char *theme = _theme == ASELECTOR_BRIGHT ? "bright" : "dark";
    std::vector<std::filesystem::path> directories;
    if (hasScreen && _theme) {
        directories.push_back(screen / theme);
    }
    if (hasScreen) {
        directories.push_back(screen);
    }
    if (_theme) {
        directories.emplace_back(theme);
    }
    return directories;
}

int DeviceTraits::set(const aselector_attribute_t &attribute)
{
    if (attribute.value < 1) {
        return EINVAL;
    }
    switch (attribute.id) {
    case ASELECTOR_SCREEN_WIDTH:
        _width = attribute.value;
        return 0;
    case ASELECTOR_SCREEN_HEIGHT:
        _height = attribute.value;
        return 0;
    case ASELECTOR_THEME:
        _theme = attribute.value;
        return _theme > ASELECTOR_DARK ? EINVAL : 0;
    default:
        return EINVAL;
    }
}

} // namespace kelp::platform
