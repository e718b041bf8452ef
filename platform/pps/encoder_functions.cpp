// SPDX-License-Identifier: Apache-2.0
// The encoder's C functions.
#include "Encoder.h"

#include <cerrno>
#include <memory>
#include <new>

using kelp::pps::Encoder;

namespace {

Encoder *encoderOf(const pps_encoder_t *encoder)
{
    return encoder ? static_cast<Encoder *>(encoder->state) : nullptr;
}

} // namespace

pps_encoder_error_t pps_encoder_initialize(pps_encoder_t *encoder, bool json)
{
    if (!encoder) {
        return PPS_ENCODER_BAD_ARGUMENT;
    }
    const int before = errno;
    std::unique_ptr<Encoder> made(new (std::nothrow) Encoder(json));
    errno = before;
    encoder->state = made.release();
    return encoder->state ? PPS_ENCODER_OK : PPS_ENCODER_NO_MEMORY;
}

void pps_encoder_cleanup(pps_encoder_t *encoder)
{
    if (encoder) {
        const std::unique_ptr<Encoder> ended(encoderOf(encoder));
        encoder->state = nullptr;
    }
}

pps_encoder_error_t pps_encoder_add_null(pps_encoder_t *encoder, const char *name)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->addWord(name, "json", "null") : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_add_bool(pps_encoder_t *encoder, const char *name, bool value)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->addWord(name, "b", value ? "true" : "false") : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_add_int(pps_encoder_t *encoder, const char *name, int value)
{
    return pps_encoder_add_int64(encoder, name, value);
}

pps_encoder_error_t pps_encoder_add_int64(pps_encoder_t *encoder, const char *name, int64_t value)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->addInteger(name, value) : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_add_double(pps_encoder_t *encoder, const char *name, double value)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->addDouble(name, value) : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_add_string(pps_encoder_t *encoder, const char *name, const char *value)
{
    Encoder *const self = encoderOf(encoder);
    return self && value ? self->addString(name, value) : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_start_object(pps_encoder_t *encoder, const char *name)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->startObject(name) : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_end_object(pps_encoder_t *encoder)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->endObject() : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_start_array(pps_encoder_t *encoder, const char *name)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->startArray(name) : PPS_ENCODER_BAD_ARGUMENT;
}

pps_encoder_error_t pps_encoder_end_array(pps_encoder_t *encoder)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->endArray() : PPS_ENCODER_BAD_ARGUMENT;
}

const char *pps_encoder_buffer(pps_encoder_t *encoder)
{
    Encoder *const self = encoderOf(encoder);
    return self ? self->text() : nullptr;
}

size_t pps_encoder_length(pps_encoder_t *encoder)
{
    const Encoder *const self = encoderOf(encoder);
    return self ? self->length() : 0;
}
