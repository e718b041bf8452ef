// SPDX-License-Identifier: Apache-2.0
// See WholeLines.h.

#include "WholeLines.h"

#include <algorithm>

namespace kelp::platform {

namespace {

constexpr char INCOMPLETE = '*';

bool isNameLine(std::string_view line)
{
    const std::size_t name = line.find_first_not_of("-+#*!");
    return name != std::string_view::npos && line[name] == '@';
}

// Where the last name line of some whole lines begins.
std::size_t lastNameLine(std::string_view lines)
{
    std::size_t found = 0;
    for (std::size_t begin = 0; begin < lines.size(); begin = lines.find('\n', begin) + 1) {
        if (isNameLine(lines.substr(begin))) {
            found = begin;
        }
    }
    return found;
}

} // namespace

std::size_t copyWholeLines(std::string_view text, std::span<char> buffer)
{
    if (text.size() <= buffer.size()) {
        std::copy(text.begin(), text.end(), buffer.begin());
        return text.size();
    }
    if (buffer.size() < 2) {
        return 0;
    }
    const std::size_t end = text.rfind('\n', buffer.size() - 2); // one byte is for the flag
    if (end == std::string_view::npos) {
        return 0;
    }
    const std::string_view kept = text.substr(0, end + 1);
    const std::size_t name = lastNameLine(kept);
    const auto rest = std::copy_n(kept.begin(), name, buffer.begin());
    *rest = INCOMPLETE;
    std::copy(kept.begin() + static_cast<std::ptrdiff_t>(name), kept.end(), rest + 1);
    return kept.size() + 1;
}

} // namespace kelp::platform
