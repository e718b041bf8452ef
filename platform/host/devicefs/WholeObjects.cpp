// SPDX-License-Identifier: Apache-2.0
// See WholeObjects.h.

#include "WholeObjects.h"

#include <algorithm>

namespace kelp::platform {

namespace {

constexpr char INCOMPLETE = '*';

bool isNameLine(std::string_view line)
{
    const std::size_t name = line.find_first_not_of("-+#*!");
    return name != std::string_view::npos && line[name] == '@';
}

// Where the first object of a text ends.
std::size_t endOfFirst(std::string_view text)
{
    std::size_t end = text.find('\n');
    while (end != std::string_view::npos && end + 1 < text.size() && !isNameLine(text.substr(end + 1))) {
        end = text.find('\n', end + 1);
    }
    return end == std::string_view::npos ? text.size() : end + 1;
}

// Copies the lines of one object that fit, behind the flag.
std::size_t copyWholeLines(std::string_view object, std::span<char> buffer)
{
    const std::size_t end =
        buffer.size() < 2 ? std::string_view::npos : object.rfind('\n', buffer.size() - 2);
    if (end == std::string_view::npos) {
        return 0;
    }
    buffer.front() = INCOMPLETE;
    std::copy_n(object.begin(), end + 1, buffer.begin() + 1);
    return end + 2;
}

} // namespace

std::size_t takeWholeObjects(std::string_view &text, std::span<char> buffer)
{
    if (text.size() <= buffer.size()) {
        const std::size_t size = text.size();
        std::copy(text.begin(), text.end(), buffer.begin());
        text = {};
        return size;
    }
    std::size_t taken = 0;
    for (std::size_t next = endOfFirst(text); taken + next <= buffer.size();
         next = endOfFirst(text.substr(taken))) {
        taken += next;
    }
    std::copy_n(text.begin(), taken, buffer.begin());
    std::size_t copied = taken;
    if (taken == 0) {
        copied = copyWholeLines(text, buffer);
        taken = copied ? endOfFirst(text) : 0;
    }
    text.remove_prefix(taken);
    return copied;
}

} // namespace kelp::platform
