// SPDX-License-Identifier: Apache-2.0
#include "Change.h"

#include "platform/pps/Line.h"

#include <pps/pps.h>

#include <cerrno>

namespace kelp::device {

namespace {

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
    std::size_t digits = 0;
    for (const char c : value) {
        digits += isDigit(c) ? 1 : 0;
    }
    const bool hasPoint = digits + 1 == value.size() && value.find('.') != std::string_view::npos;
    return isDigit(value.front()) && isDigit(value.back()) && (digits == value.size() || hasPoint);
}

// Nearly all values can be told to be good at a glance; the others are put to the trial.
bool isValid(const pps::Line &line)
{
    const bool isPlain =
        (line.encoding == pps::Encoding::Number && isPlainNumber(line.value)) ||
        (line.encoding == pps::Encoding::Bool && (line.value == "true" || line.value == "false")) ||
        (line.encoding == pps::Encoding::Escaped && line.value.find('\\') == std::string_view::npos);
    return isPlain || pps::isValid(line.encoding, line.value);
}

bool isName(const pps::Line &line)
{
    return line.kind == pps::Line::Kind::Object && line.flags == 0;
}

bool isSetting(const pps::Line &line)
{
    return line.kind == pps::Line::Kind::Attribute && line.flags == 0 && isValid(line);
}

bool isDeletion(const pps::Line &line)
{
    return line.kind == pps::Line::Kind::Deleted && !line.isObject && line.flags == PPS_DELETED;
}

} // namespace

int Change::parse(std::string_view text)
{
    _objectName = {};
    _body = text;
    _steps.clear();
    if (!pps::isUtf8(text)) {
        return EINVAL;
    }
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view before = rest;
        pps::Line line;
        if (!pps::takeLine(rest, line)) {
            return EINVAL;
        }
        const std::string_view whole = before.substr(0, before.size() - rest.size());
        if (isSetting(line)) {
            _steps.push_back({line.name, whole, false});
        } else if (isDeletion(line)) {
            _steps.push_back({line.name, {}, true});
        } else if (isName(line) && before.size() == text.size()) {
            _objectName = line.name;
            _body = rest;
        } else {
            return EINVAL;
        }
    }
    return 0;
}

} // namespace kelp::device
