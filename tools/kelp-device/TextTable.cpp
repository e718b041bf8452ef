// SPDX-License-Identifier: Apache-2.0
// See TextTable.h.

#include "TextTable.h"

#include "device/navigator/ClientText.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace kelp::tool {

namespace {

constexpr char REPLACEMENT[] = "\xef\xbf\xbd"; // as onOneLine() has it

// A code point of UTF-8 is taken for one column.
std::size_t columnsOf(const std::string &text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](unsigned char byte) { return (byte & 0xc0U) != 0x80U; }));
}

// The bytes of a text's first code point, or of its malformed beginning; no other one's are among them.
std::size_t firstSize(std::string_view text)
{
    constexpr unsigned char LEADS[] = {0xc0, 0xe0, 0xf0}; // of two bytes, three and four
    const auto first = static_cast<unsigned char>(text.front());
    const auto rest = static_cast<std::size_t>(
        std::count_if(std::begin(LEADS), std::end(LEADS), [first](auto lead) { return first >= lead; }));
    const std::string_view following = text.substr(1, rest);
    const auto end = std::find_if(following.begin(), following.end(),
                                  [](unsigned char byte) { return (byte & 0xc0U) != 0x80U; });
    return 1 + static_cast<std::size_t>(end - following.begin());
}

// Whether a code point turns the direction of what follows it, so that it reads as something else: U+061C, U+200E,
// U+200F, U+202A to U+202E, U+2066 to U+2069.
bool turnsDirection(std::string_view codePoint)
{
    const auto isWithin = [codePoint](std::string_view first, std::string_view last) {
        return codePoint.size() == first.size() && codePoint >= first && codePoint <= last;
    };
    return codePoint == "\xd8\x9c" || isWithin("\xe2\x80\x8e", "\xe2\x80\x8f") ||
           isWithin("\xe2\x80\xaa", "\xe2\x80\xae") || isWithin("\xe2\x81\xa6", "\xe2\x81\xa9");
}

} // namespace

std::string aligned(const std::vector<Row> &rows)
{
    std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size());
    for (const Row &row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], columnsOf(row[column]));
        }
    }
    std::string text;
    for (const Row &row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += row[column] + std::string(widths[column] - columnsOf(row[column]) + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

std::string printable(const std::string &text)
{
    std::string line;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view codePoint = rest.substr(0, firstSize(rest));
        // One at a time: as a whole it would be cut.
        line += turnsDirection(codePoint) ? REPLACEMENT : device::onOneLine(codePoint);
        rest.remove_prefix(codePoint.size());
    }
    return line;
}

} // namespace kelp::tool
