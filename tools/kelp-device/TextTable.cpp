// SPDX-License-Identifier: Apache-2.0
// See TextTable.h.

#include "TextTable.h"

#include <algorithm>

namespace kelp::tool {

namespace {

// A code point of UTF-8 is taken for one column.
std::size_t columnsOf(const std::string &text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](unsigned char byte) { return (byte & 0xc0U) != 0x80U; }));
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

std::string printable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](unsigned char character) { return character < 0x20 || character == 0x7f; }, '?');
    return text;
}

} // namespace kelp::tool
