// SPDX-License-Identifier: Apache-2.0
// Reads JSON without recursion: the container that is open in the tree says where the reader is. What is read
// always ends before the line feed behind the value, for no part of a value can hold one.
#include "ValueReader.h"
#include "Base64.h"
#include "Escapes.h"

#include <cstring>

namespace kelp::pps {

Node &ValueReader::addString(const char *string, Offset name)
{
    Node &node = _builder.add(PPS_TYPE_STRING, name);
    node.string = offsetOf(string);
    return node;
}

bool ValueReader::readBool(std::string_view value, Offset name)
{
    _builder.add(PPS_TYPE_BOOL, name).truth = value == "true";
    return value == "true" || value == "false";
}

bool ValueReader::read(Encoding encoding, char *from, char *end, Offset name)
{
    _at = from;
    switch (encoding) {
    case Encoding::Text:
        *end = '\0';
        addString(from, name);
        return true;
    case Encoding::Escaped:
        addString(from, name);
        return undoEscapes(from, end);
    case Encoding::Base64:
        addString(from, name);
        return undoBase64(from, end);
    case Encoding::Bool:
        return readBool({from, end}, name);
    case Encoding::Number:
        return readNumber(name) && _at == end;
    case Encoding::Json:
        return readJson(name) && _at == end;
    }
    return false;
}

char ValueReader::skipSpace()
{
    while (*_at == ' ' || *_at == '\t' || *_at == '\r') {
        ++_at;
    }
    return *_at;
}

bool ValueReader::readJson(Offset name)
{
    skipSpace();
    if (!readJsonValue(name)) {
        return false;
    }
    while (_depth > 0) {
        const bool isRead = _builder.container().type == PPS_TYPE_ARRAY ? readArray() : readObject();
        if (!isRead) {
            return false;
        }
    }
    skipSpace();
    return true;
}

// Containers are entered only; what is in them is for the loop above.
bool ValueReader::readJsonValue(Offset name)
{
    switch (*_at) {
    case '"':
        return readString(name);
    case '{':
        return enter(PPS_TYPE_OBJECT, name);
    case '[':
        return enter(PPS_TYPE_ARRAY, name);
    case 't':
        _builder.add(PPS_TYPE_BOOL, name).truth = true;
        return readWord("true");
    case 'f':
        _builder.add(PPS_TYPE_BOOL, name).truth = false;
        return readWord("false");
    case 'n':
        _builder.add(PPS_TYPE_NULL, name);
        return readWord("null");
    default:
        return readNumber(name);
    }
}

bool ValueReader::readWord(std::string_view word)
{
    if (static_cast<std::size_t>(_end - _at) < word.size() ||
        std::memcmp(_at, word.data(), word.size()) != 0) {
        return false;
    }
    _at += word.size();
    return true;
}

bool ValueReader::readNumber(Offset name)
{
    Number number;
    const char *const numberEnd = pps::readNumber(_at, number);
    if (!numberEnd) {
        return false;
    }
    Node &node = _builder.add(PPS_TYPE_NUMBER, name);
    node.numberKind = number.kind;
    _hasBigInteger |= number.kind == Number::Kind::BigInteger;
    node.integer = number.integer; // or the double in its place
    _at += numberEnd - _at;
    return true;
}

bool ValueReader::readString(Offset name)
{
    addString(++_at, name);
    _at = readJsonString(_at, _end);
    return _at;
}

bool ValueReader::enter(pps_node_type_t type, Offset name)
{
    if (_depth == PPS_MAX_DEPTH) {
        return false;
    }
    ++_depth;
    ++_at;
    _builder.open(type, name);
    return true;
}

void ValueReader::leave()
{
    --_depth;
    ++_at;
    _builder.close();
}

// The elements of the open array up to its end or to a container among them.
bool ValueReader::readArray()
{
    const int depth = _depth;
    while (_depth == depth) {
        const char next = skipSpace();
        if (next == ']') {
            leave();
            return true;
        }
        if (!_builder.isEmpty()) {
            if (next != ',') {
                return false;
            }
            ++_at;
            skipSpace();
        }
        if (!readJsonValue(NO_NAME)) {
            return false;
        }
    }
    return true;
}

bool ValueReader::readObject()
{
    const int depth = _depth;
    while (_depth == depth) {
        const char next = skipSpace();
        if (next == '}') {
            leave();
            return true;
        }
        if (!_builder.isEmpty()) {
            if (next != ',') {
                return false;
            }
            ++_at;
            skipSpace();
        }
        Offset name = NO_NAME;
        if (!readName(name) || !readJsonValue(name)) {
            return false;
        }
    }
    return true;
}

// A member's name and the colon behind it.
bool ValueReader::readName(Offset &name)
{
    if (*_at != '"') {
        return false;
    }
    name = offsetOf(++_at);
    _at = readJsonString(_at, _end);
    if (!_at || skipSpace() != ':') {
        return false;
    }
    ++_at;
    skipSpace();
    return true;
}

} // namespace kelp::pps
