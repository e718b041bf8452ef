// SPDX-License-Identifier: Apache-2.0
// See PpsEncoder.h. Values are read where they lie in the variant, never copied out of it.

#include "PpsEncoder.h"

#include <exception>

namespace kelp {

namespace {

template <typename Value>
const Value &held(const QVariant &value)
{
    return *static_cast<const Value *>(value.constData());
}

} // namespace

PpsEncoder::PpsEncoder()
{
    throwOnPpsEncoderError(pps_encoder_initialize(&_encoder, false));
}

PpsEncoder::~PpsEncoder()
{
    pps_encoder_cleanup(&_encoder);
}

void PpsEncoder::throwOnPpsEncoderError(pps_encoder_error_t error)
{
    if (error != PPS_ENCODER_OK) {
        throw std::exception();
    }
}

void PpsEncoder::encodeData(const char *name, const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::UnknownType:
        return throwOnPpsEncoderError(pps_encoder_add_null(&_encoder, name));
    case QMetaType::Bool:
        return throwOnPpsEncoderError(pps_encoder_add_bool(&_encoder, name, held<bool>(value)));
    case QMetaType::Int:
        return throwOnPpsEncoderError(pps_encoder_add_int(&_encoder, name, held<int>(value)));
    case QMetaType::UInt: // a double, so that no reader takes it for a signed integer
        return throwOnPpsEncoderError(pps_encoder_add_double(&_encoder, name, held<unsigned int>(value)));
    case QMetaType::LongLong:
        return throwOnPpsEncoderError(pps_encoder_add_int64(&_encoder, name, held<qlonglong>(value)));
    case QMetaType::Double:
        return throwOnPpsEncoderError(pps_encoder_add_double(&_encoder, name, held<double>(value)));
    case QMetaType::QString:
        return throwOnPpsEncoderError(
            pps_encoder_add_string(&_encoder, name, _text.set(held<QString>(value))));
    case QMetaType::QVariantMap:
        throwOnPpsEncoderError(pps_encoder_start_object(&_encoder, name));
        encodeObject(held<QVariantMap>(value));
        return throwOnPpsEncoderError(pps_encoder_end_object(&_encoder));
    case QMetaType::QVariantList:
        throwOnPpsEncoderError(pps_encoder_start_array(&_encoder, name));
        encodeArray(held<QVariantList>(value));
        return throwOnPpsEncoderError(pps_encoder_end_array(&_encoder));
    default:
        throw std::exception();
    }
}

void PpsEncoder::encodeObject(const QVariantMap &members)
{
    for (auto member = members.cbegin(); member != members.cend(); ++member) {
        encodeData(_name.set(member.key()), member.value());
    }
}

void PpsEncoder::encodeArray(const QVariantList &elements)
{
    for (const QVariant &element : elements) {
        encodeData(nullptr, element);
    }
}

QByteArray PpsEncoder::text()
{
    const char *text = pps_encoder_buffer(&_encoder);
    if (!text) {
        throw std::exception();
    }
    return QByteArray(text);
}

} // namespace kelp
