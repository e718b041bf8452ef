// SPDX-License-Identifier: Apache-2.0
// See Utf8Buffer.h. Almost every text is plain ASCII, which needs no conversion but the narrowing.

#include "Utf8Buffer.h"

#include <QtCore/QByteArray>

#include <cstdint>
#include <cstring>
#include <exception>

namespace kelp {

namespace {

// Narrows the units, four at a time, and returns whether all were ASCII; bytes is undefined if not.
bool narrow(const char16_t *units, std::size_t size, char *bytes)
{
    std::uint64_t all = 0;
    std::size_t i = 0;
    for (; i + 4 <= size; i += 4) {
        std::uint64_t four = 0;
        std::memcpy(&four, units + i, sizeof four);
        all |= four;
        for (std::size_t k = 0; k < 4; ++k) {
            bytes[i + k] = static_cast<char>(units[i + k]);
        }
    }
    for (; i < size; ++i) {
        all |= units[i];
        bytes[i] = static_cast<char>(units[i]);
    }
    return (all & 0xff80ff80ff80ff80u) == 0;
}

void requireNoNul(const char *bytes, std::size_t size)
{
    if (std::memchr(bytes, '\0', size)) {
        throw std::exception();
    }
}

} // namespace

const char *Utf8Buffer::set(const QString &text)
{
    const auto size = static_cast<std::size_t>(text.size());
    if (_bytes.size() <= size) {
        _bytes.resize(size + size / 2 + 64);
    }
    if (narrow(reinterpret_cast<const char16_t *>(text.utf16()), size, _bytes.data())) {
        requireNoNul(_bytes.data(), size);
        _bytes[size] = '\0';
        return _bytes.data();
    }
    const QByteArray encoded = text.toUtf8();
    requireNoNul(encoded.constData(), static_cast<std::size_t>(encoded.size()));
    _bytes.assign(encoded.constData(), encoded.constData() + encoded.size() + 1);
    return _bytes.data();
}

} // namespace kelp
