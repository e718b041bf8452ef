// SPDX-License-Identifier: Apache-2.0
// Storage for one text as UTF-8, used again for the next: an encoder of many small texts allocates for the largest only.
#pragma once

#include <QtCore/QString>

#include <vector>

namespace kelp {

class Utf8Buffer
{
public:
    // The text, NUL-terminated, until the next call. Throws for one with a NUL in it, which would end there.
    const char *set(const QString &text);

private:
    std::vector<char> _bytes;
};

} // namespace kelp
