// SPDX-License-Identifier: Apache-2.0
// Lines become attributes of the object whose name line came last, or of the root. A deleted object is a name
// and nothing else, unless attributes follow it all the same.
#include "TextReader.h"

namespace kelp::pps {

bool TextReader::read()
{
    std::string_view rest(_text, _length);
    Line line;
    while (!rest.empty()) {
        if (!takeLine(rest, line) || !readLine(line)) {
            return false;
        }
    }
    closeObject();
    _builder.close();
    return true;
}

bool TextReader::readLine(const Line &line)
{
    if (line.isObject) {
        openObject(line);
        return true;
    }
    if (line.kind == Line::Kind::Attribute) {
        return readAttribute(line);
    }
    _builder.add(PPS_TYPE_DELETED, takeName(line.name.data(), line.name)).flags = line.flags;
    return true;
}

bool TextReader::readAttribute(const Line &line)
{
    char *const from = _text + (line.value.data() - _text);
    Node &node = _builder.next();
    const Offset name = takeName(line.name.data(), line.name);
    if (!_values.read(line.encoding, from, from + line.value.size(), name)) {
        return false;
    }
    node.flags = line.flags;
    return true;
}

void TextReader::openObject(const Line &line)
{
    closeObject();
    _isInObject = true;
    const auto type = line.kind == Line::Kind::Deleted ? PPS_TYPE_DELETED : PPS_TYPE_OBJECT;
    _builder.open(type, takeName(line.name.data() - 1, line.name)).flags = line.flags; // with its '@'
}

void TextReader::closeObject()
{
    if (!_isInObject) {
        return;
    }
    if (!_builder.isEmpty()) {
        _builder.container().type = PPS_TYPE_OBJECT;
    }
    _builder.close();
}

// Ends the name with a NUL, in the place of what follows it on its line.
Offset TextReader::takeName(const char *begin, std::string_view name)
{
    _text[name.data() + name.size() - _text] = '\0';
    return static_cast<Offset>(begin - _text);
}

} // namespace kelp::pps
