// SPDX-License-Identifier: Apache-2.0
// The text that an encoder makes: it is written behind its end, and only what is then taken in counts, so
// that whoever gives up half-way leaves no trace.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

namespace kelp::pps {

class TextBuffer
{
public:
    TextBuffer() : _begin(_first), _end(_first), _limit(_first + sizeof _first) {}
    TextBuffer(const TextBuffer &) = delete;
    TextBuffer &operator=(const TextBuffer &) = delete;

    const char *begin() const { return _begin; }
    std::size_t length() const { return static_cast<std::size_t>(_end - _begin); }
    char last() const { return _end[-1]; } // of a text that is not empty

    char *end() { return _end; }

    // Makes room for size bytes from a place on that lies behind the text's end. The bytes up to there stay
    // as they are, and at moves with them. False without memory, with errno as it was.
    bool makeRoom(char *&at, std::size_t size)
    {
        return static_cast<std::size_t>(_limit - at) >= size || grow(at, size);
    }
    // Takes in what was written up to there.
    void endAt(char *end) { _end = end; }

private:
    bool grow(char *&at, std::size_t size)
    {
        const int before = errno;
        const auto used = static_cast<std::size_t>(at - _begin);
        const std::size_t capacity = std::max(2 * static_cast<std::size_t>(_limit - _begin), used + size);
        std::unique_ptr<char[]> larger(new (std::nothrow) char[capacity]);
        errno = before;
        if (!larger) {
            return false;
        }
        std::memcpy(larger.get(), _begin, used);
        _end = larger.get() + length();
        _begin = larger.get();
        _limit = _begin + capacity;
        at = _begin + used;
        _larger = std::move(larger);
        return true;
    }

    char *_begin;
    char *_end;
    char *_limit;
    std::unique_ptr<char[]> _larger;
    char _first[800]; // enough for most texts, in the memory of the encoder itself
};

} // namespace kelp::pps
