// SPDX-License-Identifier: Apache-2.0
// A parsed PPS text, and the steps of a walk through it that both decoders take. A failing step throws.
#pragma once

#include "PpsScratch.h"

#include <pps/pps.h>

#include <QtCore/QByteArray>

#include <exception>

namespace kelp {

class PpsText
{
public:
    // Parses a copy: the platform works in place, and the bytes are the caller's. A NUL among them fails: the platform
    // would take it for the end.
    explicit PpsText(const QByteArray &bytes);
    ~PpsText();

    // In front of the text's own members, or elements.
    pps_decoder_t *decoder() { return &_decoder; }
    PpsKeyCache &keys() { return _scratch->keys; }

    static void check(pps_decoder_error_t error)
    {
        if (error != PPS_DECODER_OK) {
            throw std::exception();
        }
    }

    // Calls visit() at each child of the node that the walk is in.
    template <typename Visit>
    static void forEachChild(pps_decoder_t *decoder, Visit visit)
    {
        const int length = pps_decoder_length(decoder);
        for (int i = 0; i < length; ++i) {
            check(pps_decoder_goto_index(decoder, i));
            visit();
        }
    }

    // What visit() makes of the current child's members or elements.
    template <typename Visit>
    static auto inside(pps_decoder_t *decoder, Visit visit)
    {
        check(pps_decoder_push(decoder, nullptr));
        auto result = visit();
        check(pps_decoder_pop(decoder));
        return result;
    }

    static bool boolean(pps_decoder_t *decoder);
    static const char *string(pps_decoder_t *decoder); // UTF-8

    // What use() makes of the current number: an int, a long long for an integer that is too large, or a double.
    template <typename Use>
    static auto number(pps_decoder_t *decoder, Use use)
    {
        if (!pps_decoder_is_integer(decoder, nullptr)) {
            double value = 0;
            check(pps_decoder_get_double(decoder, nullptr, &value));
            return use(value);
        }
        int value = 0;
        const pps_decoder_error_t error = pps_decoder_get_int(decoder, nullptr, &value);
        if (error == PPS_DECODER_DOES_NOT_FIT) {
            return use(longInteger(decoder));
        }
        check(error);
        return use(value);
    }

private:
    Q_DISABLE_COPY(PpsText)
    static long long longInteger(pps_decoder_t *decoder);

    PpsScratch::Lease _scratch; // its text is read by the decoder until its end
    pps_decoder_t _decoder;
};

} // namespace kelp
