// SPDX-License-Identifier: Apache-2.0
// Reads a text, line by line, into the tree.
#pragma once

#include "Line.h"
#include "Tree.h"
#include "ValueReader.h"

namespace kelp::pps {

class TextReader
{
public:
    TextReader(TreeBuilder &builder, char *text, std::size_t length)
        : _builder(builder),
          _values(builder, text, text + length),
          _text(text),
          _length(length)
    {}

    // False, with anything in the tree, where the text is malformed. Its UTF-8 is for the caller to check.
    bool read();

private:
    bool readLine(const Line &line);
    bool readAttribute(const Line &line);
    void openObject(const Line &line);
    void closeObject();
    Offset takeName(const char *begin, std::string_view name);

    TreeBuilder &_builder;
    ValueReader _values;
    char *_text;
    std::size_t _length;
    bool _isInObject = false;
};

} // namespace kelp::pps
