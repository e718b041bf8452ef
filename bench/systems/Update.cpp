// SPDX-License-Identifier: Apache-2.0
// See Update.h. The stamp's digits stand at fixed places, so that setting and reading them costs next to
// nothing. No value is longer than 64 bytes: Redis then keeps the hash in its compact form, which is its best
// case.

#include "Update.h"

#include <chrono>

namespace kelp::bench {

namespace {

constexpr std::string_view BEGIN = "seq::0000000000\n"
                                   "sent::0000000000000000000\n"
                                   "name::front sensor, left bay, second slot\n"
                                   "state::connected\n"
                                   "level::87\n"
                                   "temperature::23.625\n"
                                   "charging::false\n"
                                   "note::";

constexpr std::size_t SEQUENCE_AT = 5;
constexpr std::size_t SEQUENCE_DIGITS = 10;
constexpr std::size_t SENT_AT = 22;
constexpr std::size_t SENT_DIGITS = 19;

void putDigits(char *place, std::size_t width, std::uint64_t value)
{
    for (std::size_t i = width; i > 0; --i) {
        place[i - 1] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
}

} // namespace

std::int64_t monotonicNow()
{
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

Update::Update() : _text(BEGIN)
{
    _text.append(TEXT_BYTES - 1 - _text.size(), 'x') += '\n';
    std::string_view rest = _text;
    for (auto &[name, value] : _fields) {
        const std::size_t colon = rest.find(':');
        const std::size_t end = rest.find('\n');
        name = rest.substr(0, colon);
        value = rest.substr(colon + 2, end - colon - 2);
        rest.remove_prefix(end + 1);
    }
}

void Update::set(const Stamp &stamp)
{
    putDigits(_text.data() + SEQUENCE_AT, SEQUENCE_DIGITS, stamp.sequence);
    putDigits(_text.data() + SENT_AT, SENT_DIGITS, static_cast<std::uint64_t>(stamp.sent));
}

Stamp Update::read(std::string_view text)
{
    if (text.starts_with('@')) {
        text.remove_prefix(text.find('\n') + 1);
    }
    const std::size_t flag =
        text.starts_with('+') ? 1 : 0; // in front of each attribute that is new to the reader
    if (text.size() != TEXT_BYTES + flag * FIELDS || text.back() != '\n') {
        return {};
    }
    return {number(text.substr(SEQUENCE_AT + flag, SEQUENCE_DIGITS)),
            static_cast<std::int64_t>(number(text.substr(SENT_AT + 2 * flag, SENT_DIGITS)))};
}

std::uint64_t Update::number(std::string_view digits)
{
    std::uint64_t value = 0;
    for (const char digit : digits) {
        value = value * 10 + static_cast<std::uint64_t>(digit - '0');
    }
    return value;
}

} // namespace kelp::bench
