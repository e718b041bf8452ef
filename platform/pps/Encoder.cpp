// SPDX-License-Identifier: Apache-2.0
// Names and strings are written as they stand while they are looked at, and once more where that shows that
// they need escapes.
#include "Encoder.h"
#include "Contents.h"
#include "Escapes.h"
#include "Line.h"
#include "Number.h"

#include <charconv>
#include <cmath>

namespace kelp::pps {

namespace {

// Room for any value but a string, with an encoding and punctuation.
constexpr std::size_t SLACK = LONGEST_NUMBER + 16;
constexpr Contents ESCAPED_IN_JSON = HAS_CONTROL | HAS_BACKSLASH | HAS_QUOTE;
constexpr Contents ESCAPED_IN_TEXT = HAS_CONTROL | HAS_DELETE | HAS_BACKSLASH;

char *write(char *at, std::string_view text)
{
    std::memcpy(at, text.data(), text.size());
    return at + text.size();
}

bool isBroken(std::string_view text, Contents contents)
{
    return contents & IS_BEYOND_ASCII && !isUtf8(text);
}

bool isAttributeName(std::string_view name, Contents contents)
{
    constexpr std::string_view RESERVED = "@-+#*!";
    return !name.empty() && !(contents & (HAS_CONTROL | HAS_DELETE | HAS_COLON)) &&
           RESERVED.find(name.front()) == RESERVED.npos;
}

} // namespace

Encoder::Encoder(bool isJson) : _isJson(isJson)
{
    if (_isJson) {
        _text.endAt(write(_text.end(), "{"));
    }
}

Encoder::Place Encoder::place() const
{
    if (_depth > 0) {
        return _arrays[_depth - 1] ? Place::Element : Place::Member;
    }
    return _isJson ? Place::Member : Place::Line;
}

char *Encoder::writeSeparator(char *at) const
{
    *at = ',';
    return at + ((_text.last() | 0x20) != '{'); // nor '[', behind which the value is its container's first
}

pps_encoder_error_t Encoder::beginLine(std::string_view name, std::string_view encoding, char *&at)
{
    if (!_text.makeRoom(at, name.size() + SLACK)) {
        return PPS_ENCODER_NO_MEMORY;
    }
    // A line at the root would go to the object of the name line above it.
    const bool isLost = _hasObjects && !_isInObject;
    const Contents contents = copy(at, name);
    if (isLost || !isAttributeName(name, contents) || isBroken(name, contents)) {
        return PPS_ENCODER_BAD_NAME;
    }
    at += name.size();
    *at++ = ':';
    at = write(at, encoding);
    *at++ = ':';
    return PPS_ENCODER_OK;
}

pps_encoder_error_t Encoder::beginMember(std::string_view name, char *&at)
{
    if (!_text.makeRoom(at, name.size() * LONGEST_ESCAPE + SLACK)) {
        return PPS_ENCODER_NO_MEMORY;
    }
    at = writeSeparator(at);
    *at++ = '"';
    const Contents contents = copy(at, name);
    if (isBroken(name, contents)) {
        return PPS_ENCODER_BAD_NAME;
    }
    at = contents & ESCAPED_IN_JSON ? writeWithJsonEscapes(at, name) : at + name.size();
    *at++ = '"';
    *at++ = ':';
    return PPS_ENCODER_OK;
}

pps_encoder_error_t Encoder::begin(const char *name, std::string_view encoding, char *&at)
{
    at = _text.end();
    const Place place = this->place();
    if (place == Place::Element) {
        if (!_text.makeRoom(at, SLACK)) {
            return PPS_ENCODER_NO_MEMORY;
        }
        at = writeSeparator(at);
        return PPS_ENCODER_OK;
    }
    if (!name) {
        return PPS_ENCODER_BAD_ARGUMENT;
    }
    return place == Place::Member ? beginMember(name, at) : beginLine(name, encoding, at);
}

pps_encoder_error_t Encoder::finish(char *at)
{
    *at = '\n';
    _text.endAt(at + (place() == Place::Line));
    return PPS_ENCODER_OK;
}

pps_encoder_error_t Encoder::addWord(const char *name, std::string_view encoding, std::string_view word)
{
    char *at = nullptr;
    const pps_encoder_error_t error = begin(name, encoding, at);
    return error ? error : finish(write(at, word));
}

pps_encoder_error_t Encoder::addInteger(const char *name, std::int64_t value)
{
    char *at = nullptr;
    const pps_encoder_error_t error = begin(name, "n", at);
    return error ? error : finish(std::to_chars(at, at + LONGEST_NUMBER, value).ptr);
}

pps_encoder_error_t Encoder::addDouble(const char *name, double value)
{
    if (!std::isfinite(value)) {
        return PPS_ENCODER_BAD_VALUE;
    }
    char *at = nullptr;
    const pps_encoder_error_t error = begin(name, "n", at);
    return error ? error : finish(writeDouble(at, value));
}

pps_encoder_error_t Encoder::addString(const char *name, std::string_view value)
{
    char *at = nullptr;
    if (const pps_encoder_error_t error = begin(name, "", at)) {
        return error;
    }
    return place() == Place::Line ? addText(value, at) : addJsonString(value, at);
}

// At is behind "name::", which becomes "name:c:" where need be.
pps_encoder_error_t Encoder::addText(std::string_view value, char *at)
{
    if (!_text.makeRoom(at, value.size() + 1)) {
        return PPS_ENCODER_NO_MEMORY;
    }
    const Contents contents = copy(at, value);
    if (isBroken(value, contents)) {
        return PPS_ENCODER_BAD_VALUE;
    }
    if (!(contents & ESCAPED_IN_TEXT)) {
        return finish(at + value.size());
    }
    at = write(at - 1, "c:");
    return _text.makeRoom(at, value.size() * LONGEST_ESCAPE + 1) ? finish(writeWithCEscapes(at, value))
                                                                 : PPS_ENCODER_NO_MEMORY;
}

pps_encoder_error_t Encoder::addJsonString(std::string_view value, char *at)
{
    if (!_text.makeRoom(at, value.size() + 3)) {
        return PPS_ENCODER_NO_MEMORY;
    }
    *at++ = '"';
    const Contents contents = copy(at, value);
    if (isBroken(value, contents)) {
        return PPS_ENCODER_BAD_VALUE;
    }
    if (!(contents & ESCAPED_IN_JSON)) {
        return finish(write(at + value.size(), "\""));
    }
    return _text.makeRoom(at, value.size() * LONGEST_ESCAPE + 2)
               ? finish(write(writeWithJsonEscapes(at, value), "\""))
               : PPS_ENCODER_NO_MEMORY;
}

pps_encoder_error_t Encoder::startNamedObject(std::string_view name)
{
    char *at = _text.end();
    if (!_text.makeRoom(at, name.size() + 1)) {
        return PPS_ENCODER_NO_MEMORY;
    }
    const Contents contents = copy(at, name);
    if (name.size() < 2 || contents & (HAS_CONTROL | HAS_DELETE) || isBroken(name, contents)) {
        return PPS_ENCODER_BAD_NAME;
    }
    _text.endAt(write(at + name.size(), "\n"));
    _isInObject = true;
    _hasObjects = true;
    return PPS_ENCODER_OK;
}

pps_encoder_error_t Encoder::startContainer(const char *name, char bracket)
{
    if (_depth == PPS_MAX_DEPTH) {
        return PPS_ENCODER_BAD_NESTING;
    }
    char *at = nullptr;
    if (const pps_encoder_error_t error = begin(name, "json", at)) {
        return error;
    }
    *at++ = bracket;
    _text.endAt(at);
    _arrays[_depth++] = bracket == '[';
    return PPS_ENCODER_OK;
}

pps_encoder_error_t Encoder::startObject(const char *name)
{
    if (place() == Place::Line && !_isInObject && name && name[0] == '@') {
        return startNamedObject(name);
    }
    return startContainer(name, '{');
}

pps_encoder_error_t Encoder::startArray(const char *name)
{
    return startContainer(name, '[');
}

pps_encoder_error_t Encoder::endContainer(bool isArray, char bracket)
{
    if (_depth == 0 || _arrays[_depth - 1] != isArray) {
        return PPS_ENCODER_BAD_NESTING;
    }
    char *at = _text.end();
    if (!_text.makeRoom(at, 2)) {
        return PPS_ENCODER_NO_MEMORY;
    }
    *at++ = bracket;
    --_depth;
    return finish(at);
}

pps_encoder_error_t Encoder::endObject()
{
    if (_depth == 0 && _isInObject) {
        _isInObject = false;
        return PPS_ENCODER_OK;
    }
    return endContainer(false, '}');
}

pps_encoder_error_t Encoder::endArray()
{
    return endContainer(true, ']');
}

const char *Encoder::text()
{
    char *end = _text.end();
    if (!isComplete() || !_text.makeRoom(end, 2)) {
        return nullptr;
    }
    // Behind the text, where the next value is written over it.
    *write(end, _isJson ? "}" : "") = '\0';
    return _text.begin();
}

std::size_t Encoder::length() const
{
    return isComplete() ? _text.length() + _isJson : 0;
}

} // namespace kelp::pps
