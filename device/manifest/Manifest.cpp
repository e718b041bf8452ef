// SPDX-License-Identifier: Apache-2.0
// See Manifest.h.

#include "Manifest.h"

#include <algorithm>
#include <iterator>

namespace kelp::device {

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xef\xbb\xbf";
constexpr std::string_view SEPARATOR = ": ";
constexpr std::string_view TYPE = "Package-Type";
constexpr std::string_view APPLICATION = "application";

// What an application's own reader skips as well: a byte-order mark in front, and carriage returns wherever they are.
std::string normalised(std::string_view text)
{
    if (text.starts_with(BYTE_ORDER_MARK)) {
        text.remove_prefix(BYTE_ORDER_MARK.size());
    }
    std::string lines;
    lines.reserve(text.size());
    std::remove_copy(text.begin(), text.end(), std::back_inserter(lines), '\r');
    return lines;
}

// Reads the sections of one text, one after the other.
class Reader
{
public:
    explicit Reader(std::string_view text) : _rest(text) {}

    // False on a malformed section; the rest is not to be read then.
    bool readSection(std::string_view name);

    Manifest::Attributes takeAttributes() { return std::move(_attributes); }
    bool isApplication() const
    {
        const auto type = _attributes.find(TYPE);
        return type != _attributes.end() && type->second == APPLICATION;
    }
    const std::string &problem() const { return _problem; }

private:
    std::string_view takeLine();
    bool takeContinuation(std::string_view line);
    bool takeAttribute(std::string_view line, const std::string &prefix);
    bool fail(const std::string &what);

    std::string_view _rest;
    std::size_t _line = 0; // the number of the last one taken; from 1
    Manifest::Attributes _attributes;
    std::string *_last = nullptr; // the value of the section's last attribute line; null: there was none yet
    std::string _problem;
};

bool Reader::fail(const std::string &what)
{
    _problem =
        "line " + std::to_string(std::max<std::size_t>(_line, 1)) + ": " + what; // 0: the text is empty
    return false;
}

std::string_view Reader::takeLine()
{
    const std::size_t end = std::min(_rest.find('\n'), _rest.size());
    const std::string_view line = _rest.substr(0, end);
    _rest.remove_prefix(std::min(end + 1, _rest.size()));
    ++_line;
    return line;
}

bool Reader::takeContinuation(std::string_view line)
{
    if (!_last) {
        return fail("it goes on with a line of which the section has none yet: remove the leading space");
    }
    _last->append(line.substr(1));
    return true;
}

bool Reader::takeAttribute(std::string_view line, const std::string &prefix)
{
    if (!line.starts_with(prefix)) {
        return fail("a name in this section begins with \"" + prefix + "\"");
    }
    const std::size_t separator = line.find(SEPARATOR);
    if (separator == std::string_view::npos) {
        return fail("a colon and a space have to stand between a name and its value");
    }
    std::string &value = _attributes[std::string(line.substr(0, separator))];
    value = line.substr(separator + SEPARATOR.size());
    _last = &value;
    return true;
}

bool Reader::readSection(std::string_view name)
{
    const std::string prefix = std::string(name) + '-';
    _last = nullptr;
    while (!_rest.empty()) {
        const std::string_view line = takeLine();
        if (line.empty()) {
            break;
        }
        const bool isTaken = line.front() == ' ' ? takeContinuation(line) : takeAttribute(line, prefix);
        if (!isTaken) {
            return false;
        }
    }
    return _last || fail("the " + std::string(name) + " section has no attribute");
}

} // namespace

std::optional<Manifest> Manifest::parse(std::string_view text)
{
    std::string unwanted;
    return parse(text, unwanted);
}

std::optional<Manifest> Manifest::parse(std::string_view text, std::string &problem)
{
    const std::string lines = normalised(text);
    Reader reader(lines);
    if (reader.readSection("Archive") && reader.readSection("Package") &&
        (!reader.isApplication() || reader.readSection("Application"))) {
        return Manifest(reader.takeAttributes());
    }
    problem = reader.problem();
    return std::nullopt;
}

std::string Manifest::title() const
{
    return firstOf("Application-Name", "Package-Name");
}

std::string Manifest::version() const
{
    return firstOf("Application-Version", "Package-Version");
}

std::string Manifest::firstOf(std::string_view name, std::string_view otherName) const
{
    for (const std::string_view candidate : {name, otherName}) {
        const auto attribute = _attributes.find(candidate);
        if (attribute != _attributes.end() && !attribute->second.empty()) {
            return attribute->second;
        }
    }
    return {};
}

} // namespace kelp::device
