// SPDX-License-Identifier: Apache-2.0
// What differs between Qt 5.15 and Qt 6. No other file asks for Qt's version.
#pragma once

#include <QtCore/QtGlobal>

namespace kelp {

// The type of a native event's result, which this library always leaves alone.
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
using NativeEventResult = qintptr;
#else
using NativeEventResult = long;
#endif

} // namespace kelp
