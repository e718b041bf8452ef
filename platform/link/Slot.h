// SPDX-License-Identifier: Apache-2.0
// The newest text for one reader, in memory that the device (the writer) and the client share. It holds three buffers:
// the writer fills one, the reader reads one, and the third lies between them. Putting and taking exchange the one in
// between, so that neither ever waits for the other's copying, and no text is ever torn.
//
// The writer can withhold what nobody has taken yet, to put something newer in its place; or only declare it stale, which
// costs next to nothing, and put something newer when the reader asks for it.
//
// Nothing here wakes a reader: that is done by a byte on a descriptor, one for each text that is put while none is there.
#pragma once

#include "SharedMemory.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kelp::link {

// Where things lie in the memory; used by the two classes below.
class SlotMemory
{
public:
    explicit SlotMemory(SharedMemory memory) : _memory(std::move(memory)) {}

    static std::size_t sizeFor(std::size_t textBytes);
    std::size_t textBytes() const; // the longest text

    struct Buffer {
        std::uint32_t size;
        std::uint32_t more;
    };
    std::atomic<std::uint32_t> &between() const;
    Buffer &buffer(std::uint32_t index) const;
    // Short texts of all buffers share the first page; a long one has pages of its own.
    char *storage(std::uint32_t index, std::size_t size) const;

    // The value of between(): a buffer's index and one of these.
    static constexpr std::uint32_t INDEX = 3;
    static constexpr std::uint32_t FRESH = 4;    // nobody has taken it
    static constexpr std::uint32_t WITHHELD = 8; // the writer is about to replace it
    static constexpr std::uint32_t STALE = 16;   // the writer replaces it when it is asked to

private:
    SharedMemory _memory;
};

class SlotWriter
{
public:
    explicit SlotWriter(SharedMemory memory) : _memory(std::move(memory)) {}

    // Withholds the text that lies there. False: there is none, the reader has taken the last one.
    // Until the next put() the reader waits: it must follow at once.
    bool withhold();

    // Declares the text that lies there stale. False: there is none.
    bool makeStale();

    // The length of the last text.
    std::size_t lastSize() const { return _lastSize; }

    // Puts a text of at most textBytes, which it cuts otherwise. Only where nothing lies, or what does is withheld.
    void put(std::string_view text, bool more);

private:
    bool mark(std::uint32_t mark);

    SlotMemory _memory;
    std::uint32_t _own = 0; // the buffer to fill next
    std::size_t _lastSize = 0;
};

class SlotReader
{
public:
    explicit SlotReader(SharedMemory memory) : _memory(std::move(memory)) {}

    enum class Result {
        Taken,
        Nothing,
        Withheld, // try again at once
        Stale,    // ask the writer for a newer one, then try again
    };
    // Takes the text; it stays as it is until the next take().
    Result take(std::string_view &text, bool &more);

private:
    SlotMemory _memory;
    std::uint32_t _own = 2;
};

} // namespace kelp::link
