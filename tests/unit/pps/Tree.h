// SPDX-License-Identifier: Apache-2.0
// What a decoded text holds, as a line that can be compared, and the same tree written again: for the tests
// of the codec and its fuzz target, through the C functions alone.
#pragma once

#include "platform/pps/Line.h"

#include <pps/pps.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace kelp::pps {

enum class Show { Everything, WhatCanBeWritten };

// The parts of a text between bars, as rows of a test.
inline std::vector<std::string> split(const std::string &text)
{
    std::istringstream rows(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(rows, part, '|');) {
        parts.push_back(part);
    }
    return parts;
}

// A text between two marks.
inline std::string between(char begin, const std::string &text, char end)
{
    std::string marked(1, begin);
    marked += text;
    marked += end;
    return marked;
}

inline std::string describeReal(double real)
{
    char number[64];
    std::snprintf(number, sizeof number, "r%.17g", real);
    return number;
}

inline std::string describeNumber(pps_decoder_t *decoder)
{
    std::int64_t integer = 0;
    double real = 0;
    if (pps_decoder_get_int64(decoder, nullptr, &integer) == PPS_DECODER_OK) {
        return std::to_string(integer);
    }
    return pps_decoder_get_double(decoder, nullptr, &real) ? "?" : describeReal(real);
}

inline std::string describeChildren(pps_decoder_t *decoder, Show show);

inline std::string describeValue(pps_decoder_t *decoder, Show show)
{
    bool truth = false;
    const char *string = nullptr;
    const pps_node_type_t type = pps_decoder_type(decoder, nullptr);
    switch (type) {
    case PPS_TYPE_NULL:
        return "null";
    case PPS_TYPE_BOOL:
        return pps_decoder_get_bool(decoder, nullptr, &truth) ? "?" : truth ? "true" : "false";
    case PPS_TYPE_NUMBER:
        return describeNumber(decoder);
    case PPS_TYPE_STRING:
        return pps_decoder_get_string(decoder, nullptr, &string) ? "?" : between('\'', string, '\'');
    case PPS_TYPE_ARRAY:
    case PPS_TYPE_OBJECT: {
        if (pps_decoder_push(decoder, nullptr) != PPS_DECODER_OK) {
            return "?";
        }
        const std::string children = describeChildren(decoder, show);
        return pps_decoder_pop(decoder) ? "?"
               : type == PPS_TYPE_ARRAY ? between('[', children, ']')
                                        : between('{', children, '}');
    }
    default:
        return "deleted";
    }
}

// "name=value name=value", with flags in front of a name that has any.
inline std::string describeChildren(pps_decoder_t *decoder, Show show = Show::Everything)
{
    std::string text;
    for (int i = 0; pps_decoder_goto_index(decoder, i) == PPS_DECODER_OK; ++i) {
        if (show == Show::WhatCanBeWritten && pps_decoder_type(decoder, nullptr) == PPS_TYPE_DELETED) {
            continue;
        }
        text += text.empty() ? "" : " ";
        if (const int flags = pps_decoder_flags(decoder, nullptr); flags && show == Show::Everything) {
            text += std::to_string(flags) + "|";
        }
        if (const char *const name = pps_decoder_name(decoder)) {
            text += std::string(name) + "=";
        }
        text += describeValue(decoder, show);
    }
    return text;
}

// What a text decodes to, or "error" and its number.
inline std::string describe(std::string text)
{
    pps_decoder_t decoder;
    const int error = pps_decoder_initialize(&decoder, text.data());
    std::string tree = error ? "error " + std::to_string(error) : describeChildren(&decoder);
    pps_decoder_cleanup(&decoder);
    return tree;
}

// Writes the children of the node that the walk is in. False after an error.
inline bool writeChildren(pps_decoder_t *decoder, pps_encoder_t *encoder)
{
    bool isWritten = true;
    for (int i = 0; isWritten && pps_decoder_goto_index(decoder, i) == PPS_DECODER_OK; ++i) {
        const char *const name = pps_decoder_name(decoder);
        const pps_node_type_t type = pps_decoder_type(decoder, nullptr);
        bool truth = false;
        std::int64_t integer = 0;
        double real = 0;
        const char *string = nullptr;
        if (type == PPS_TYPE_NULL) {
            isWritten = !pps_encoder_add_null(encoder, name);
        } else if (!pps_decoder_get_bool(decoder, nullptr, &truth)) {
            isWritten = !pps_encoder_add_bool(encoder, name, truth);
        } else if (!pps_decoder_get_int64(decoder, nullptr, &integer)) {
            isWritten = !pps_encoder_add_int64(encoder, name, integer);
        } else if (!pps_decoder_get_double(decoder, nullptr, &real)) {
            isWritten = !pps_encoder_add_double(encoder, name, real);
        } else if (!pps_decoder_get_string(decoder, nullptr, &string)) {
            isWritten = !pps_encoder_add_string(encoder, name, string);
        } else if (!pps_decoder_push(decoder, nullptr)) {
            const bool isArray = type == PPS_TYPE_ARRAY;
            isWritten = !(isArray ? pps_encoder_start_array : pps_encoder_start_object)(encoder, name) &&
                        writeChildren(decoder, encoder) &&
                        !(isArray ? pps_encoder_end_array : pps_encoder_end_object)(encoder) &&
                        !pps_decoder_pop(decoder);
        }
    }
    return isWritten;
}

// Whether the parts that the device's store uses find a text good.
inline bool isGood(std::string_view text)
{
    bool isGood = isUtf8(text);
    Line line;
    while (isGood && !text.empty()) {
        isGood = takeLine(text, line) &&
                 (line.kind != Line::Kind::Attribute || isValid(line.encoding, line.value));
    }
    return isGood;
}

} // namespace kelp::pps
