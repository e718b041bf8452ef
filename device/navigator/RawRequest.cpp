// SPDX-License-Identifier: Apache-2.0
// Splits the text into lines and the lines into fields. Reads from the text alone: no copy is made but of the
// result.
#include "RawRequest.h"

#include "ClientText.h"

#include <algorithm>
#include <array>

namespace kelp::device {

namespace {

struct AttributeLine {
    std::string_view name, encoding, value;
};

// Takes the text up to a character off, and the character with it.
std::optional<std::string_view> takeUntil(std::string_view &text, char end)
{
    const std::size_t size = text.find(end);
    if (size == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view taken = text.substr(0, size);
    text.remove_prefix(size + 1);
    return taken;
}

// Flags in front of a name belong to what a subscriber reads, not to a request.
bool isAttributeName(std::string_view name)
{
    return !name.empty() && std::string_view("-+#*!@").find(name.front()) == std::string_view::npos;
}

std::optional<AttributeLine> parseAttribute(std::string_view line)
{
    const auto name = takeUntil(line, ':');
    const auto encoding = name ? takeUntil(line, ':') : std::nullopt;
    if (!encoding || !isAttributeName(*name)) {
        return std::nullopt;
    }
    return AttributeLine{*name, *encoding, line};
}

// An encoding that nobody knows reads as text. What the encoding "c" escapes is left so: no message needs it.
bool isText(std::string_view encoding)
{
    constexpr std::array<std::string_view, 4> OTHERS = {"n", "b", "json", "b64"};
    return std::find(OTHERS.begin(), OTHERS.end(), encoding) == OTHERS.end();
}

} // namespace

std::optional<std::string> messageOfRawRequest(std::string_view text)
{
    if (!isUtf8(text)) {
        return std::nullopt;
    }
    if (text.starts_with('@') && !takeUntil(text, '\n')) {
        return std::nullopt;
    }
    std::optional<AttributeLine> message;
    while (!text.empty()) {
        const auto line = takeUntil(text, '\n');
        const auto attribute = line ? parseAttribute(*line) : std::nullopt;
        if (!attribute) {
            return std::nullopt;
        }
        if (attribute->name == "msg") {
            message = attribute;
        }
    }
    if (!message || !isText(message->encoding)) {
        return std::nullopt;
    }
    return std::string(message->value);
}

} // namespace kelp::device
