// SPDX-License-Identifier: Apache-2.0
// What the device tells of its screen and theme, for UIToolkitSupportPrivate's choice of assets.
#pragma once

#include <QtCore/QString>

namespace kelp {

// Filled as a whole, or not at all.
struct DeviceProperties {
    int width = 0;  // pixels
    int height = 0; // pixels
    QString theme;
};

} // namespace kelp
