// SPDX-License-Identifier: Apache-2.0
#include "NameIndex.h"

#include <algorithm>

namespace kelp::device {

namespace {

constexpr std::size_t FEWEST_CELLS = 64;

} // namespace

void NameIndex::insert(std::uint32_t hash, std::uint32_t slot)
{
    if (2 * (_taken + 1) > _cells.size()) {
        grow();
    }
    place({hash, slot});
    ++_taken;
}

void NameIndex::clear()
{
    _cells.clear();
    _taken = 0;
}

void NameIndex::place(const Cell &cell)
{
    const std::size_t mask = _cells.size() - 1;
    std::size_t at = cell.hash & mask;
    while (_cells[at].slot != NONE) {
        at = (at + 1) & mask;
    }
    _cells[at] = cell;
}

void NameIndex::grow()
{
    std::vector<Cell> cells(std::max(FEWEST_CELLS, 2 * _cells.size()));
    cells.swap(_cells);
    for (const Cell &cell : cells) {
        if (cell.slot != NONE) {
            place(cell);
        }
    }
}

} // namespace kelp::device
