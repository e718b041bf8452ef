// SPDX-License-Identifier: Apache-2.0
// Writes variants as PPS text: the walk behind PpsObject::encode(). Whatever cannot be written throws.
#pragma once

#include "Utf8Buffer.h"

#include <pps/pps.h>

#include <QtCore/QByteArray>
#include <QtCore/QVariant>

namespace kelp {

class PpsEncoder
{
public:
    PpsEncoder(); // throws as well
    ~PpsEncoder();

    // The name is UTF-8; null inside an array.
    void encodeData(const char *name, const QVariant &value);
    void encodeObject(const QVariantMap &members);
    void encodeArray(const QVariantList &elements);

    // All that has been encoded.
    QByteArray text();

    static void throwOnPpsEncoderError(pps_encoder_error_t error);

private:
    Q_DISABLE_COPY(PpsEncoder)

    pps_encoder_t _encoder;
    Utf8Buffer _name; // of the member whose value is being added: the platform keeps none
    Utf8Buffer _text; // of the string that is being added
};

} // namespace kelp
