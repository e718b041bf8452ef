// SPDX-License-Identifier: Apache-2.0
// Tables of text for people: what state and pps ls print.
#pragma once

#include <string>
#include <vector>

namespace kelp::tool {

using Row = std::vector<std::string>;

// One line a row, each column as wide as its widest cell. All rows have as many cells as the first.
std::string aligned(const std::vector<Row> &rows);

// A client's text on one line, and without what would drive the terminal or reorder what is on it: U+FFFD stands there.
std::string printable(const std::string &text);

} // namespace kelp::tool
