// SPDX-License-Identifier: Apache-2.0
// See Codec.h.

#include "Codec.h"

#include <kelp/PpsObject.h>

namespace kelp::bench {

namespace {

class ObjectCodec : public Codec
{
public:
    QByteArray encode(const QVariantMap &map) override { return PpsObject::encode(map); }
    QVariantMap decode(const QByteArray &bytes) override { return PpsObject::decode(bytes); }
};

} // namespace

std::unique_ptr<Codec> makeObjectCodec()
{
    return std::make_unique<ObjectCodec>();
}

} // namespace kelp::bench
