// SPDX-License-Identifier: Apache-2.0
#include "Change.h"

#include "platform/pps/Line.h"

#include <pps/pps.h>

#include <cerrno>

namespace kelp::device {

namespace {

bool isName(const pps::Line &line)
{
    return line.kind == pps::Line::Kind::Object && line.flags == 0;
}

bool isSetting(const pps::Line &line)
{
    return line.kind == pps::Line::Kind::Attribute && line.flags == 0 &&
           pps::isValid(line.encoding, line.value);
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
