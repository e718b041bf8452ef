// SPDX-License-Identifier: Apache-2.0
// The names that a thread has decoded lately, as strings: the same few come in every text, and all maps share them.
#pragma once

#include <QtCore/QString>

#include <array>
#include <cstddef>

namespace kelp {

class PpsKeyCache
{
public:
    PpsKeyCache() = default;
    Q_DISABLE_COPY(PpsKeyCache)

    // The string of a name in UTF-8, until the next call. Null is an empty name.
    const QString &key(const char *name);

private:
    static constexpr std::size_t LONGEST = 24; // names beyond it are not kept

    // One name at a place that its bytes settle; the next one there takes it over.
    struct Slot {
        std::size_t size = 0;
        std::array<char, LONGEST> bytes;
        QString text;
    };

    std::array<Slot, 256> _slots; // as many as a byte of the hash tells apart
    QString _uncached;            // a name that is not kept
};

} // namespace kelp
