// SPDX-License-Identifier: Apache-2.0
// See Codec.h.

#include "Codec.h"

#include <QtCore/QCborMap>
#include <QtCore/QCborValue>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace kelp::bench {

namespace {

class QtJson : public Codec
{
public:
    QByteArray encode(const QVariantMap &map) override
    {
        return QJsonDocument(QJsonObject::fromVariantMap(map)).toJson(QJsonDocument::Compact);
    }
    QVariantMap decode(const QByteArray &bytes) override
    {
        return QJsonDocument::fromJson(bytes).object().toVariantMap();
    }
};

class QtCbor : public Codec
{
public:
    QByteArray encode(const QVariantMap &map) override
    {
        return QCborValue(QCborMap::fromVariantMap(map)).toCbor();
    }
    QVariantMap decode(const QByteArray &bytes) override
    {
        return QCborValue::fromCbor(bytes).toMap().toVariantMap();
    }
};

} // namespace

std::unique_ptr<Codec> makeQtJson()
{
    return std::make_unique<QtJson>();
}

std::unique_ptr<Codec> makeQtCbor()
{
    return std::make_unique<QtCbor>();
}

} // namespace kelp::bench
