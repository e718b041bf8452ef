// SPDX-License-Identifier: Apache-2.0
// See AttributeLines.h.

#include "AttributeLines.h"

#include "Failure.h"

#include <nlohmann/json.hpp>
#include <pps/pps.h>

#include <algorithm>
#include <new>

namespace kelp::tool {

namespace {

// One line of an encoder's: it knows how to escape, and what names there can be.
template <typename Add>
std::string encoded(const std::string &name, Add add)
{
    pps_encoder_t encoder;
    if (pps_encoder_initialize(&encoder, false) != PPS_ENCODER_OK) {
        throw std::bad_alloc();
    }
    const pps_encoder_error_t error = add(encoder);
    std::string line(error == PPS_ENCODER_OK ? pps_encoder_buffer(&encoder) : "");
    pps_encoder_cleanup(&encoder);
    switch (error) {
    case PPS_ENCODER_OK:
        return line;
    case PPS_ENCODER_BAD_VALUE:
        throw Failure(EXIT_USAGE, "the value of " + name + " is not UTF-8");
    default:
        throw Failure(EXIT_USAGE, "no attribute can have the name \"" + name +
                                      "\": leave out ':', control characters, and '@', '+', '-', '*', '#' "
                                      "and '!' at its beginning");
    }
}

std::string boolLine(const std::string &name, bool value)
{
    return encoded(
        name, [&](pps_encoder_t &encoder) { return pps_encoder_add_bool(&encoder, name.c_str(), value); });
}

std::string stringLine(const std::string &name, const std::string &value)
{
    return encoded(name, [&](pps_encoder_t &encoder) {
        return pps_encoder_add_string(&encoder, name.c_str(), value.c_str());
    });
}

std::string plainLine(const std::string &name, const std::string &encoding, std::string value)
{
    (void)boolLine(name, true); // refuses a name that cannot be
    return name + ':' + encoding + ':' + std::move(value) + '\n';
}

bool isNumber(const std::string &value)
{
    const auto isDigit = [](char character) {
        return character >= '0' && character <= '9';
    };
    return !value.empty() && (isDigit(value.front()) || value.front() == '-') && isDigit(value.back()) &&
           nlohmann::json::accept(value);
}

bool isArrayOrObject(const std::string &value)
{
    return (value.starts_with('[') || value.starts_with('{')) && nlohmann::json::accept(value);
}

// On one line: JSON has control characters between its tokens only, where a space is as good.
std::string onOneLine(std::string json)
{
    std::replace_if(
        json.begin(), json.end(), [](unsigned char character) { return character < ' '; }, ' ');
    return json;
}

std::string valueLine(const std::string &name, const std::string &value)
{
    if (value == "true" || value == "false") {
        return boolLine(name, value == "true");
    }
    if (isNumber(value)) {
        return plainLine(name, "n", value); // as it was typed: a double would lose digits
    }
    return isArrayOrObject(value) ? plainLine(name, "json", onOneLine(value)) : stringLine(name, value);
}

} // namespace

std::string settingLine(const std::string &argument)
{
    const std::size_t separator = argument.find_first_of("=:");
    if (separator == std::string::npos) {
        throw Failure(EXIT_USAGE, "\"" + argument + "\" sets nothing: give NAME=VALUE");
    }
    const std::string name = argument.substr(0, separator);
    const std::string rest = argument.substr(separator + 1);
    if (argument[separator] == '=') {
        return valueLine(name, rest);
    }
    const std::size_t end = rest.find(':');
    if (end == std::string::npos || rest.find('\n') != std::string::npos) {
        throw Failure(EXIT_USAGE, "\"" + argument +
                                      "\" is no line NAME:ENCODING:VALUE: give that, or "
                                      "NAME=VALUE");
    }
    return plainLine(name, rest.substr(0, end), rest.substr(end + 1));
}

std::string deletingLine(const std::string &name)
{
    (void)boolLine(name, true); // refuses a name that cannot be
    return '-' + name + '\n';
}

} // namespace kelp::tool
