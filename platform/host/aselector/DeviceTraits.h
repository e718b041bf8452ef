// SPDX-License-Identifier: Apache-2.0
// What is known of the device that assets are selected for: read from a context's attributes, and turned into the
// directories in which its variants stand.
#pragma once

#include <aselector/aselector.h>

#include <filesystem>
#include <vector>

namespace kelp::platform {

class DeviceTraits
{
public:
    // Reads a list up to its end. Returns 0, or EINVAL for an attribute that is unknown or out of its range.
    int read(const aselector_attribute_t *attributes);

    // Relative to an assets directory, the most specific first.
    std::vector<std::filesystem::path> variantDirectories() const;

private:
    int set(const aselector_attribute_t &attribute);

    // 0: not given.
    int _width = 0;
    int _height = 0;
    int _theme = 0; // enum aselector_theme
};

} // namespace kelp::platform
