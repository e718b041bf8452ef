// SPDX-License-Identifier: Apache-2.0
// See RawRequest.h.
#include "RawRequest.h"

#include <pps/pps.h>

namespace kelp::device {

namespace {

// The tree of a text, for as long as both live.
class Decoded
{
public:
    explicit Decoded(std::string &text)
        : _succeeded(pps_decoder_initialize(&_decoder, text.data()) == PPS_DECODER_OK)
    {}
    ~Decoded()
    {
        if (_succeeded) {
            pps_decoder_cleanup(&_decoder);
        }
    }
    Decoded(const Decoded &) = delete;
    Decoded &operator=(const Decoded &) = delete;

    explicit operator bool() const { return _succeeded; }
    pps_decoder_t *get() { return &_decoder; }

private:
    pps_decoder_t _decoder{};
    bool _succeeded;
};

bool isName(const char *name)
{
    return name && *name == '@';
}

// The last "msg" among the children where the walk is, if it is a text.
std::optional<std::string> lastMessage(pps_decoder_t *decoder)
{
    const char *message = nullptr;
    for (int i = 0; pps_decoder_goto_index(decoder, i) == PPS_DECODER_OK; ++i) {
        const std::string_view name = pps_decoder_name(decoder);
        if (isName(name.data())) {
            return std::nullopt; // a name line that is not the first
        }
        if (name == "msg" && pps_decoder_get_string(decoder, nullptr, &message) != PPS_DECODER_OK) {
            return std::nullopt;
        }
    }
    return message ? std::optional<std::string>(message) : std::nullopt;
}

} // namespace

std::optional<std::string> messageOfRawRequest(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    std::string copy(text); // to be parsed in place
    Decoded decoded(copy);
    if (!decoded) {
        return std::nullopt;
    }
    const bool hasName = isName(pps_decoder_name(decoded.get()));
    if (hasName && (pps_decoder_length(decoded.get()) > 1 ||
                    pps_decoder_push(decoded.get(), nullptr) != PPS_DECODER_OK)) {
        return std::nullopt;
    }
    return lastMessage(decoded.get());
}

} // namespace kelp::device
