// SPDX-License-Identifier: Apache-2.0
// See FailingCodec.h. A program's own functions come before those of its libraries, which are asked for by name.

#include "FailingCodec.h"

#include <pps/pps.h>

#include <dlfcn.h>

static bool isDue()
{
    return FailingCodec::countdown > 0 && --FailingCodec::countdown == 0;
}

#define REAL(name) reinterpret_cast<decltype(&name)>(dlsym(RTLD_NEXT, #name))
#define FALLIBLE(type, failure, name, parameters, ...)                                                       \
    type name parameters                                                                                     \
    {                                                                                                        \
        static const auto real = REAL(name);                                                                 \
        return isDue() ? failure : real(__VA_ARGS__);                                                        \
    }
#define DECODER(name, parameters, ...)                                                                       \
    FALLIBLE(pps_decoder_error_t, PPS_DECODER_BAD_TEXT, name, parameters, __VA_ARGS__)
#define ENCODER(name, parameters, ...)                                                                       \
    FALLIBLE(pps_encoder_error_t, PPS_ENCODER_BAD_VALUE, name, parameters, __VA_ARGS__)
#define LIFE(kind, argument)                                                                                 \
    pps_##kind##_error_t pps_##kind##_initialize(pps_##kind##_t *kind, argument beginning)                   \
    {                                                                                                        \
        const auto error =                                                                                   \
            isDue() ? pps_##kind##_error_t(1) : REAL(pps_##kind##_initialize)(kind, beginning);              \
        FailingCodec::alive += error == 0;                                                                   \
        return error;                                                                                        \
    }                                                                                                        \
    void pps_##kind##_cleanup(pps_##kind##_t *kind)                                                          \
    {                                                                                                        \
        --FailingCodec::alive;                                                                               \
        REAL(pps_##kind##_cleanup)(kind);                                                                    \
    }

LIFE(decoder, char *)
DECODER(pps_decoder_goto_index, (pps_decoder_t * d, int index), d, index)
DECODER(pps_decoder_get_bool, (pps_decoder_t * d, const char *name, bool *value), d, name, value)
DECODER(pps_decoder_get_int, (pps_decoder_t * d, const char *name, int *value), d, name, value)
DECODER(pps_decoder_get_int64, (pps_decoder_t * d, const char *name, int64_t *value), d, name, value)
DECODER(pps_decoder_get_double, (pps_decoder_t * d, const char *name, double *value), d, name, value)
DECODER(pps_decoder_get_string, (pps_decoder_t * d, const char *name, const char **value), d, name, value)
DECODER(pps_decoder_push, (pps_decoder_t * d, const char *name), d, name)
DECODER(pps_decoder_pop, (pps_decoder_t * d), d)

LIFE(encoder, bool)
ENCODER(pps_encoder_add_null, (pps_encoder_t * e, const char *name), e, name)
ENCODER(pps_encoder_add_bool, (pps_encoder_t * e, const char *name, bool value), e, name, value)
ENCODER(pps_encoder_add_int, (pps_encoder_t * e, const char *name, int value), e, name, value)
ENCODER(pps_encoder_add_int64, (pps_encoder_t * e, const char *name, int64_t value), e, name, value)
ENCODER(pps_encoder_add_double, (pps_encoder_t * e, const char *name, double value), e, name, value)
ENCODER(pps_encoder_add_string, (pps_encoder_t * e, const char *name, const char *value), e, name, value)
ENCODER(pps_encoder_start_object, (pps_encoder_t * e, const char *name), e, name)
ENCODER(pps_encoder_end_object, (pps_encoder_t * e), e)
ENCODER(pps_encoder_start_array, (pps_encoder_t * e, const char *name), e, name)
ENCODER(pps_encoder_end_array, (pps_encoder_t * e), e)
FALLIBLE(const char *, nullptr, pps_encoder_buffer, (pps_encoder_t * e), e)
