// SPDX-License-Identifier: Apache-2.0
// See PpsVariantDecoder.h. Values are moved into their places, keys come out of a cache, and members that arrive in
// order are put at the map's end without a search.

#include "PpsVariantDecoder.h"

#include "PpsKeyCache.h"
#include "PpsText.h"
#include "Utf8String.h"

namespace kelp {

PpsVariantDecoder::PpsVariantDecoder(pps_decoder_t *decoder, PpsKeyCache &keys)
    : _decoder(decoder),
      _keys(keys)
{}

QVariantMap PpsVariantDecoder::decodeObject()
{
    QVariantMap members;
    PpsText::forEachChild(_decoder, [this, &members] {
        const QString &key = _keys.key(pps_decoder_name(_decoder));
        QVariant &member = *members.insert(members.cend(), key, QVariant());
        member = decodeChild();
    });
    return members;
}

QVariantList PpsVariantDecoder::decodeArray()
{
    QVariantList elements;
    elements.reserve(pps_decoder_length(_decoder));
    PpsText::forEachChild(_decoder, [this, &elements] { elements.append(decodeChild()); });
    return elements;
}

QVariant PpsVariantDecoder::decodeChild()
{
    switch (pps_decoder_type(_decoder, nullptr)) {
    case PPS_TYPE_BOOL:
        return PpsText::boolean(_decoder);
    case PPS_TYPE_NUMBER:
        return PpsText::number(_decoder, [](auto value) { return QVariant(value); });
    case PPS_TYPE_STRING:
        return utf8String(PpsText::string(_decoder));
    case PPS_TYPE_ARRAY:
        return PpsText::inside(_decoder, [this] { return decodeArray(); });
    case PPS_TYPE_OBJECT:
        return PpsText::inside(_decoder, [this] { return decodeObject(); });
    case PPS_TYPE_DELETED:
        return QVariantMap();
    default:
        return QVariant();
    }
}

} // namespace kelp
