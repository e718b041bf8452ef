// SPDX-License-Identifier: Apache-2.0
// Reads the value of an attribute, whatever its encoding, into the tree. Strings and names are made where
// they stand.
#pragma once

#include "Line.h"
#include "Tree.h"

namespace kelp::pps {

class ValueReader
{
public:
    // The text ends at end; a line feed stands behind each value in it.
    ValueReader(TreeBuilder &builder, char *text, const char *end) : _builder(builder), _text(text), _end(end)
    {}

    // Adds one child to the open container. False, with anything in the tree, where the value is malformed.
    bool read(Encoding encoding, char *from, char *end, Offset name);

    // Whether an integer was beyond 64 bits.
    bool hasBigInteger() const { return _hasBigInteger; }

private:
    Offset offsetOf(const char *at) const { return static_cast<Offset>(at - _text); }
    Node &addString(const char *string, Offset name);
    bool readBool(std::string_view value, Offset name);
    bool readJson(Offset name);
    bool readJsonValue(Offset name);
    bool readWord(std::string_view word);
    bool readNumber(Offset name);
    bool readString(Offset name);
    bool enter(pps_node_type_t type, Offset name);
    void leave();
    bool readArray();
    bool readObject();
    bool readName(Offset &name);
    char skipSpace();

    TreeBuilder &_builder;
    char *_text;
    const char *_end;
    char *_at = nullptr;
    int _depth = 0;
    bool _hasBigInteger = false;
};

} // namespace kelp::pps
