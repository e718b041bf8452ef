// SPDX-License-Identifier: Apache-2.0
// A string of UTF-8 with every character that is in it: Qt takes U+FEFF at the beginning for a mark, and drops it.
#pragma once

#include <QtCore/QString>

#include <cstring>

namespace kelp {

inline QString utf8String(const char *utf8, std::size_t size)
{
    QString text = QString::fromUtf8(utf8, static_cast<int>(size));
    if (size >= 3 && std::memcmp(utf8, "\xef\xbb\xbf", 3) == 0) {
        text.prepend(QChar(0xfeff));
    }
    return text;
}

// Null is an empty text.
inline QString utf8String(const char *utf8)
{
    return utf8String(utf8, utf8 ? std::strlen(utf8) : 0);
}

} // namespace kelp
