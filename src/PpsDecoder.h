// SPDX-License-Identifier: Apache-2.0
// Walks a parsed PPS text into a tree of attributes, and turns such trees into plain variants: the work behind
// PpsObject::decodeWithFlags(). Whatever fails throws.
#pragma once

#include <kelp/PpsAttribute.h>

#include <pps/pps.h>

namespace kelp {

class PpsDecoder
{
public:
    // The decoder is the caller's, and is left where it was.
    explicit PpsDecoder(pps_decoder_t *decoder) : _decoder(decoder) {}

    // The members, or the elements, of the node that the decoder is in.
    PpsAttributeMap decodeObject();
    QList<PpsAttribute> decodeArray();

    static void throwOnPpsDecoderError(pps_decoder_error_t error);

    // What PpsVariantDecoder makes of the same text. Flags are dropped.
    static QVariant variantFromPpsAttribute(const PpsAttribute &attribute);
    static QVariantMap variantMapFromPpsAttributeMap(const PpsAttributeMap &attributes);

private:
    PpsAttribute decodeChild();
    PpsAttributeFlag::Types flags();

    pps_decoder_t *_decoder;
};

} // namespace kelp
