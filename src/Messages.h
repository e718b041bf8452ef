// SPDX-License-Identifier: Apache-2.0
// Items of the library's log lines, written alike by every Qt.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDebug>
#include <QtCore/QString>

namespace kelp {

// A text in double quotes, as it stands: Qt's own quoting escapes characters in it.
struct Quoted {
    const QString &text;
};

inline QDebug operator<<(QDebug stream, const Quoted &quoted)
{
    return stream << ('"' + quoted.text.toUtf8() + '"').constData();
}

} // namespace kelp
