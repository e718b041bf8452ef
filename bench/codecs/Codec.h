// SPDX-License-Identifier: Apache-2.0
// A codec between bytes and QVariantMap, as the codec benchmark uses all of them.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QVariant>

#include <memory>

namespace kelp::bench {

class Codec
{
public:
    virtual ~Codec() = default;
    virtual QByteArray encode(const QVariantMap &map) = 0;
    virtual QVariantMap decode(const QByteArray &bytes) = 0;
};

// PpsObject's.
std::unique_ptr<Codec> makeObjectCodec();

std::unique_ptr<Codec> makeQtJson(); // QJsonDocument
std::unique_ptr<Codec> makeQtCbor(); // QCborValue
std::unique_ptr<Codec> makeRapidJson();
std::unique_ptr<Codec> makeNlohmannJson();

// What decoding cannot do without: encode() takes a map to pieces, which are prepared data of this codec, and
// decode() makes the map of them, with strings of its own. The bytes are of no interest.
std::unique_ptr<Codec> makeBuildingFloor();

// The member of a variant that is known to have that type.
template <typename Type>
const Type &held(const QVariant &variant)
{
    return *static_cast<const Type *>(variant.constData());
}

inline QString textOf(const char *utf8, std::size_t size)
{
    return QString::fromUtf8(utf8, static_cast<int>(size));
}

} // namespace kelp::bench
