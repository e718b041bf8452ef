// SPDX-License-Identifier: Apache-2.0
#include "ObjectPath.h"

#include "platform/pps/Line.h"

#include <algorithm>
#include <cerrno>

namespace kelp::device {

namespace {

constexpr std::size_t LONGEST_PART = 255;
constexpr std::size_t LONGEST_PATH = 1023;
constexpr std::string_view ALL = ".all";

bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
}

// What stands before the separator; leaves in text what stands behind it.
std::string_view takeUpTo(char separator, std::string_view &text)
{
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

bool *find(ObjectPath::Options &options, std::string_view name)
{
    if (name == "delta") {
        return &options.delta;
    }
    if (name == "wait") {
        return &options.wait;
    }
    if (name == "nopersist") {
        return &options.nopersist;
    }
    return name == "server" ? &options.server : nullptr;
}

} // namespace

int ObjectPath::parse(std::string_view text)
{
    if (text.size() > LONGEST_PATH) {
        return ENAMETOOLONG;
    }
    if (text.empty() || text.front() != '/' || std::any_of(text.begin(), text.end(), isControl) ||
        !pps::isUtf8(text)) {
        return EINVAL;
    }
    const std::size_t mark = text.find('?');
    if (const int error = parseParts(text.substr(0, mark)); error != 0) {
        return error;
    }
    _options = {};
    return mark == std::string_view::npos ? 0 : parseOptions(text.substr(mark + 1));
}

int ObjectPath::parseParts(std::string_view text)
{
    _parts.clear();
    _namesDirectory = text.back() == '/';
    while (!text.empty()) {
        const std::string_view part = takeUpTo('/', text);
        if (part == "." || part == "..") {
            return EINVAL;
        }
        if (part.size() > LONGEST_PART) {
            return ENAMETOOLONG;
        }
        if (!part.empty()) {
            _parts.push_back(part);
        }
    }
    return 0;
}

int ObjectPath::parseOptions(std::string_view text)
{
    // A comma at the end is one more option, an empty one.
    for (bool more = true; more;) {
        more = text.find(',') != std::string_view::npos;
        bool *option = find(_options, takeUpTo(',', text));
        if (option == nullptr || *option) {
            return EINVAL;
        }
        *option = true;
    }
    return 0;
}

bool ObjectPath::namesAll() const
{
    return !_namesDirectory && !_parts.empty() &&
           std::find(_parts.begin(), _parts.end(), ALL) == std::prev(_parts.end());
}

bool ObjectPath::holdsAll() const
{
    return std::find(_parts.begin(), _parts.end(), ALL) != _parts.end();
}

} // namespace kelp::device
