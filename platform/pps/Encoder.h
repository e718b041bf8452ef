// SPDX-License-Identifier: Apache-2.0
// Writes a text step by step, for the encoder's C functions: which value may stand where, and how its name is
// written.
#pragma once

#include "TextBuffer.h"

#include <pps/pps.h>

#include <bitset>
#include <string_view>

namespace kelp::pps {

class Encoder
{
public:
    explicit Encoder(bool isJson);

    pps_encoder_error_t addWord(const char *name, std::string_view encoding, std::string_view word);
    pps_encoder_error_t addInteger(const char *name, std::int64_t value);
    pps_encoder_error_t addDouble(const char *name, double value);
    pps_encoder_error_t addString(const char *name, std::string_view value);
    pps_encoder_error_t startObject(const char *name);
    pps_encoder_error_t startArray(const char *name);
    pps_encoder_error_t endObject();
    pps_encoder_error_t endArray();

    // Null while something has not been ended, and without memory for the text's end.
    const char *text();
    std::size_t length() const;

private:
    // Where the next value stands.
    enum class Place { Line, Member, Element };

    Place place() const;
    bool isComplete() const { return _depth == 0 && !_isInObject; }

    // A value begins with what stands in front of it, after which at has room for any value but a string, and
    // ends with what ends its line; until then it is not part of the text.
    pps_encoder_error_t begin(const char *name, std::string_view encoding, char *&at);
    pps_encoder_error_t beginLine(std::string_view name, std::string_view encoding, char *&at);
    pps_encoder_error_t beginMember(std::string_view name, char *&at);
    pps_encoder_error_t finish(char *at);

    pps_encoder_error_t addText(std::string_view value, char *at);
    pps_encoder_error_t addJsonString(std::string_view value, char *at);
    char *writeSeparator(char *at) const;
    pps_encoder_error_t startNamedObject(std::string_view name);
    pps_encoder_error_t startContainer(const char *name, char bracket);
    pps_encoder_error_t endContainer(bool isArray, char bracket);

    TextBuffer _text;
    std::bitset<PPS_MAX_DEPTH> _arrays; // which of the containers that are not ended are arrays
    std::size_t _depth = 0;             // of those containers
    bool _isJson;
    bool _isInObject = false; // behind a name line
    bool _hasObjects = false; // a name line has been written
};

} // namespace kelp::pps
