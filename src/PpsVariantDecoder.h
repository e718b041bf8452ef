// SPDX-License-Identifier: Apache-2.0
// Walks a parsed PPS text straight into plain variants: the work behind PpsObject::decode(), and exactly what
// PpsDecoder and its conversion give, without the tree of attributes between. Whatever fails throws.
#pragma once

#include <pps/pps.h>

#include <QtCore/QVariant>

namespace kelp {

class PpsKeyCache;

class PpsVariantDecoder
{
public:
    // The decoder is the caller's, and is left where it was.
    PpsVariantDecoder(pps_decoder_t *decoder, PpsKeyCache &keys);

    // The members, or the elements, of the node that the decoder is in.
    QVariantMap decodeObject();
    QVariantList decodeArray();

private:
    QVariant decodeChild();

    pps_decoder_t *_decoder;
    PpsKeyCache &_keys;
};

} // namespace kelp
