// SPDX-License-Identifier: Apache-2.0
// See PpsText.h.

#include "PpsText.h"

namespace kelp {

PpsText::PpsText(const QByteArray &bytes)
{
    if (bytes.contains('\0')) {
        throw std::exception();
    }
    _scratch->text.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    check(pps_decoder_initialize(&_decoder, _scratch->text.data()));
}

PpsText::~PpsText()
{
    pps_decoder_cleanup(&_decoder);
}

bool PpsText::boolean(pps_decoder_t *decoder)
{
    bool value = false;
    check(pps_decoder_get_bool(decoder, nullptr, &value));
    return value;
}

const char *PpsText::string(pps_decoder_t *decoder)
{
    const char *value = nullptr;
    check(pps_decoder_get_string(decoder, nullptr, &value));
    return value;
}

long long PpsText::longInteger(pps_decoder_t *decoder)
{
    std::int64_t value = 0;
    check(pps_decoder_get_int64(decoder, nullptr, &value));
    return value;
}

} // namespace kelp
