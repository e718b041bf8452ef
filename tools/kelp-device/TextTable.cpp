// SPDX-License-Identifier: Apache-2.0
// See TextTable.h.

#include "TextTable.h"

#include <algorithm>

namespace kelp::tool {

std::string aligned(const std::vector<Row> &rows)
{
    std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size());
    for (const Row &row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    std::string text;
    for (const Row &row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += row[column] + std::string(widths[column] - row[column].size() + 2, ' ');
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
