// SPDX-License-Identifier: Apache-2.0
// What differs between Qt 5.15 and Qt 6. No other file asks for Qt's version, but kelp/Revision.h.
#pragma once

#include <QtCore/QTextStream>
#include <QtCore/QtGlobal>

namespace kelp {

// The type of a native event's result, which this library always leaves alone.
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
using NativeEventResult = qintptr;
#else
using NativeEventResult = long;
#endif

inline void readAsUtf8(QTextStream &stream)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    stream.setEncoding(QStringConverter::Utf8);
#else
    stream.setCodec("UTF-8");
#endif
}

} // namespace kelp
