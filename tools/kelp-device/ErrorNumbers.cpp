// SPDX-License-Identifier: Apache-2.0
// See ErrorNumbers.h.

#include "ErrorNumbers.h"

#include <charconv>
#include <cstring>

namespace kelp::tool {

namespace {

constexpr int MAX_ERRNO = 4095; // the kernel's own bound

} // namespace

std::optional<int> errorNumber(const std::string &text)
{
    int number = 0;
    const char *last = text.data() + text.size();
    if (const auto [end, error] = std::from_chars(text.data(), last, number);
        error == std::errc() && end == last) {
        return number >= 0 && number <= MAX_ERRNO ? std::optional<int>(number) : std::nullopt;
    }
    for (number = 1; number <= MAX_ERRNO; ++number) {
        const char *name = ::strerrorname_np(number);
        if (name && text == name) {
            return number;
        }
    }
    return {};
}

} // namespace kelp::tool
