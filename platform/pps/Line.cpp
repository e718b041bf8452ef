// SPDX-License-Identifier: Apache-2.0
// Takes a line of PPS text apart, for the decoder and for the device's store.
#include "Line.h"
#include "Survey.h"
#include "ValueReader.h"
#include "Words.h"

#include <pps/pps.h>

#include <algorithm>
#include <memory>
#include <string>

namespace kelp::pps {

namespace {

// The flag that a character stands for, or 0.
std::uint8_t flagOf(char character)
{
    switch (character) {
    case '-':
        return PPS_DELETED;
    case '+':
        return PPS_CREATED;
    case '#':
        return PPS_TRUNCATED;
    case '*':
        return PPS_INCOMPLETE;
    case '!':
        return PPS_PURGED;
    default:
        return 0;
    }
}

Encoding encodingOf(std::string_view name)
{
    switch (name.size()) {
    case 1:
        return name[0] == 'n'   ? Encoding::Number
               : name[0] == 'b' ? Encoding::Bool
               : name[0] == 'c' ? Encoding::Escaped
                                : Encoding::Text;
    case 3:
        return name == "b64" ? Encoding::Base64 : Encoding::Text;
    case 4:
        return name == "json" ? Encoding::Json : Encoding::Text;
    default:
        return Encoding::Text;
    }
}

// The first character at or behind a place that no name can hold, or, in an attribute's, a colon; or the end.
const char *findNameEnd(const char *at, const char *end, bool isObject)
{
    const auto endsName = [](auto byte) {
        return (byte < 0x20) | (byte == 0x7f) | (byte == ':');
    };
    at = findFirst(at, end, endsName);
    while (isObject && at != end && *at == ':') {
        at = findFirst(at + 1, end, endsName);
    }
    return at;
}

// The next line feed, or null.
const char *findLineEnd(const char *at, const char *end)
{
    // Most values are short: the library's search takes longer to begin than these steps.
    const char *const near = at + std::min<std::ptrdiff_t>(end - at, 4 * VECTOR_BYTES);
    at = findFirst(at, near, [](auto byte) { return byte == '\n'; });
    return at != near ? at
                      : static_cast<const char *>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
}

std::string_view view(const char *begin, const char *end)
{
    return {begin, static_cast<std::size_t>(end - begin)};
}

// The flags and the '@' in front of a name; returns its beginning.
const char *takeMarks(const char *at, const char *end, Line &line)
{
    for (; at != end && *at <= '-' && flagOf(*at); ++at) {
        line.flags |= flagOf(*at);
    }
    line.isObject = at != end && *at == '@';
    return at + line.isObject;
}

// What follows the name of an attribute: "encoding:value". Returns the end of the line, or null.
const char *takeTail(const char *at, const char *end, Line &line)
{
    const char *const lineEnd = findLineEnd(at, end);
    if (!lineEnd) {
        return nullptr;
    }
    const char *const colon = std::find(at, lineEnd, ':');
    if (colon == lineEnd) {
        return nullptr;
    }
    line.tail = view(at, lineEnd);
    line.encoding = encodingOf(view(at, colon));
    line.value = view(colon + 1, lineEnd);
    return lineEnd;
}

// Returns the end of the line, or null.
const char *takeApart(const char *at, const char *end, Line &line)
{
    const char *const name = takeMarks(at, end, line);
    const char *const nameEnd = findNameEnd(name, end, line.isObject);
    if (nameEnd == name || nameEnd == end) {
        return nullptr;
    }
    line.name = view(name, nameEnd);
    if (*nameEnd == ':') {
        line.kind = Line::Kind::Attribute;
        return takeTail(nameEnd + 1, end, line);
    }
    line.encoding = Encoding::Text;
    line.tail = line.value = {};
    line.kind = line.flags & PPS_DELETED ? Line::Kind::Deleted : Line::Kind::Object;
    const bool isWhole = *nameEnd == '\n' && (line.isObject || line.kind == Line::Kind::Deleted);
    return isWhole ? nameEnd : nullptr;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Of a few digits, with a point between them or none. Other numbers there are; this one is sure to be one.
bool isPlainNumber(std::string_view value)
{
    constexpr std::size_t FEW = 15;
    value.remove_prefix(value.starts_with('-') ? 1 : 0);
    if (value.empty() || value.size() > FEW || value.front() == '0') {
        return value == "0";
    }
    const auto digits = static_cast<std::size_t>(std::count_if(value.begin(), value.end(), isDigit));
    const bool hasPoint = digits + 1 == value.size() && value.find('.') != std::string_view::npos;
    return isDigit(value.front()) && isDigit(value.back()) && (digits == value.size() || hasPoint);
}

// Whether the value can be told to be good at a glance, as nearly all can.
bool isPlain(Encoding encoding, std::string_view value)
{
    switch (encoding) {
    case Encoding::Text:
        return true;
    case Encoding::Escaped:
        return value.find('\\') == std::string_view::npos;
    case Encoding::Number:
        return isPlainNumber(value);
    case Encoding::Bool:
        return value == "true" || value == "false";
    case Encoding::Json:
    case Encoding::Base64:
        return false;
    }
    return false;
}

// Reads the value as the decoder does, from a copy that may change.
bool isReadable(Encoding encoding, std::string_view value)
{
    std::string text(value);
    text += '\n';
    const std::size_t capacity = survey(text).nodes;
    const auto nodes = std::make_unique_for_overwrite<Node[]>(capacity);
    TreeBuilder builder(nodes.get(), capacity);
    ValueReader reader(builder, text.data(), text.data() + text.size());
    return reader.read(encoding, text.data(), text.data() + value.size(), NO_NAME) && !reader.hasBigInteger();
}

} // namespace

bool takeLine(std::string_view &text, Line &line)
{
    line.flags = 0;
    const char *const lineEnd = takeApart(text.data(), text.data() + text.size(), line);
    if (!lineEnd) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(lineEnd + 1 - text.data()));
    return true;
}

bool isValid(Encoding encoding, std::string_view value)
{
    return isPlain(encoding, value) || isReadable(encoding, value);
}

} // namespace kelp::pps
