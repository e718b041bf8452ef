// SPDX-License-Identifier: Apache-2.0
// Finds an attribute's slot by its name's hash, for objects that have too many to look through. It knows no
// names: who asks says whether a slot is the right one. Slots are never taken out; once too many are stale it
// is cleared and filled anew.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelp::device {

class NameIndex
{
public:
    static constexpr std::uint32_t NONE = UINT32_MAX;

    // The slot among those of that hash for which isRight says so; NONE if there is none.
    template <class IsRight>
    std::uint32_t find(std::uint32_t hash, IsRight isRight) const;

    void insert(std::uint32_t hash, std::uint32_t slot);

    void clear();

private:
    struct Cell {
        std::uint32_t hash = 0;
        std::uint32_t slot = NONE;
    };

    void place(const Cell &cell);
    void grow();

    std::vector<Cell> _cells; // none or a power of two of them, at most half of them taken
    std::size_t _taken = 0;
};

template <class IsRight>
std::uint32_t NameIndex::find(std::uint32_t hash, IsRight isRight) const
{
    if (_cells.empty()) {
        return NONE;
    }
    const std::size_t mask = _cells.size() - 1;
    for (std::size_t at = hash & mask; _cells[at].slot != NONE; at = (at + 1) & mask) {
        if (_cells[at].hash == hash && isRight(_cells[at].slot)) {
            return _cells[at].slot;
        }
    }
    return NONE;
}

} // namespace kelp::device
