// SPDX-License-Identifier: Apache-2.0
// The layout: a word for the buffer in between, three buffer heads, three short texts, then three long ones.
// What comes from the other end's hand is checked, so that a client that writes rubbish spoils its own texts only.

#include "Slot.h"

#include <algorithm>
#include <cstring>

namespace kelp::link {

namespace {

constexpr std::size_t PAGE = 4096;
constexpr std::size_t HEADS = 64; // the word and the heads
constexpr std::size_t SHORT = (PAGE - HEADS) / 3;

struct Head {
    std::atomic<std::uint32_t> between;
    SlotMemory::Buffer buffers[3];
};
static_assert(sizeof(Head) <= HEADS);
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

// The memory begins as zeros: the writer's buffer is 0, the reader's 2, and 1 lies in between.
constexpr std::uint32_t FIRST_BETWEEN = 1;

std::uint32_t indexOf(std::uint32_t between)
{
    return ((between & SlotMemory::INDEX) + FIRST_BETWEEN) % 3;
}
std::uint32_t stored(std::uint32_t index)
{
    return (index + 3 - FIRST_BETWEEN) % 3;
}

} // namespace

std::size_t SlotMemory::sizeFor(std::size_t textBytes)
{
    return PAGE + 3 * textBytes;
}

std::size_t SlotMemory::textBytes() const
{
    return (_memory.size() - PAGE) / 3;
}

std::atomic<std::uint32_t> &SlotMemory::between() const
{
    return reinterpret_cast<Head *>(_memory.data())->between;
}

SlotMemory::Buffer &SlotMemory::buffer(std::uint32_t index) const
{
    return reinterpret_cast<Head *>(_memory.data())->buffers[index];
}

char *SlotMemory::storage(std::uint32_t index, std::size_t size) const
{
    return size <= SHORT ? _memory.data() + HEADS + index * SHORT
                         : _memory.data() + PAGE + index * textBytes();
}

bool SlotWriter::withhold()
{
    return mark(SlotMemory::WITHHELD);
}

bool SlotWriter::makeStale()
{
    return mark(SlotMemory::STALE);
}

// Marks the text that lies there, unless the reader takes it first.
bool SlotWriter::mark(std::uint32_t mark)
{
    std::uint32_t present = _memory.between().load(std::memory_order_acquire);
    return (present & (SlotMemory::FRESH | SlotMemory::STALE)) &&
           _memory.between().compare_exchange_strong(present, (present & SlotMemory::INDEX) | mark,
                                                     std::memory_order_acq_rel);
}

void SlotWriter::put(std::string_view text, bool more)
{
    const std::size_t size = std::min(text.size(), _memory.textBytes());
    _lastSize = size;
    _memory.buffer(_own) = {static_cast<std::uint32_t>(size), more};
    std::memcpy(_memory.storage(_own, size), text.data(), size);
    const std::uint32_t before =
        _memory.between().exchange(stored(_own) | SlotMemory::FRESH, std::memory_order_acq_rel);
    _own = indexOf(before);
}

SlotReader::Result SlotReader::take(std::string_view &text, bool &more)
{
    std::uint32_t present = _memory.between().load(std::memory_order_acquire);
    if (present & SlotMemory::WITHHELD) {
        return Result::Withheld;
    }
    if (present & SlotMemory::STALE) {
        return Result::Stale;
    }
    if (!(present & SlotMemory::FRESH)) {
        return Result::Nothing;
    }
    if (!_memory.between().compare_exchange_strong(present, stored(_own), std::memory_order_acq_rel)) {
        return Result::Withheld; // between the look and the exchange
    }
    _own = indexOf(present);
    const SlotMemory::Buffer buffer = _memory.buffer(_own);
    const std::size_t size = std::min<std::size_t>(buffer.size, _memory.textBytes());
    text = {_memory.storage(_own, size), size};
    more = buffer.more != 0;
    return Result::Taken;
}

} // namespace kelp::link
