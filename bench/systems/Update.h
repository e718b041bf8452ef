// SPDX-License-Identifier: Apache-2.0
// What the publishers of all systems send: an object of eight attributes, whose text has 200 bytes, two of
// which carry a number and a moment that the subscriber looks at.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace kelp::bench {

struct Stamp {
    std::uint64_t sequence = 0; // from 1; 0: not an update
    std::int64_t sent = 0;      // nanoseconds of the monotonic clock, or what an answer has to tell
};

std::int64_t monotonicNow();

class Update
{
public:
    static constexpr std::size_t TEXT_BYTES = 200;
    static constexpr std::size_t FIELDS = 8;
    using Fields = std::array<std::pair<std::string_view, std::string_view>, FIELDS>;

    Update();
    Update(const Update &) = delete; // the fields point into the text
    Update &operator=(const Update &) = delete;

    void set(const Stamp &stamp);
    const std::string &text() const { return _text; }
    const Fields &fields() const { return _fields; }

    // Reads a text, as published or as a reader of the device gets it. Sequence 0: it is not a whole update.
    static Stamp read(std::string_view text);
    static std::uint64_t number(std::string_view digits);

private:
    std::string _text;
    Fields _fields;
};

} // namespace kelp::bench
