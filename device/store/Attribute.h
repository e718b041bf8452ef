// SPDX-License-Identifier: Apache-2.0
// One attribute of an object, or what is remembered of one that has gone, or a place that is free. Attributes
// keeps them, in the order of their creation.
#pragma once

#include "Revision.h"

#include <string>
#include <string_view>

namespace kelp::device {

class Attribute
{
public:
    static constexpr std::uint32_t NO_STEP = UINT32_MAX;

    Attribute() = default; // a free place
    // Named for the first time by a change that is being prepared.
    Attribute(std::string_view line, std::size_t nameSize)
        : _line(line),
          _nameSize(static_cast<std::uint32_t>(nameSize)),
          _state(State::Prepared)
    {}

    bool is(std::string_view name) const
    {
        return _nameSize == name.size() && _line.compare(0, _nameSize, name) == 0;
    }
    std::string_view name() const { return std::string_view(_line).substr(0, _nameSize); }
    bool isFree() const { return _state == State::Free; }
    bool isPrepared() const { return _state == State::Prepared; }
    bool isLive() const { return _state == State::Live; }
    bool isDeleted() const { return _state == State::Deleted; }
    // Of its line while it lives, else 0.
    std::size_t bytes() const { return isLive() ? _line.size() : 0; }
    // When it was last set or deleted.
    Revision changed() const { return _changed; }

    // line: "name:encoding:value\n"
    void set(std::string_view line, bool isNopersist, Revision now);
    // purged: because its last publisher has gone.
    void remove(bool purged, Revision now);
    bool isNopersist() const { return _isNopersist; }

    // Its line if isWanted or if it has changed since then, with its flags; or the line that tells of its
    // deletion, unless the reader cannot have seen it.
    void appendTo(std::string &text, Revision seen, bool isWanted) const;

    std::uint32_t step = NO_STEP; // of the change that is being prepared, the last that names it

private:
    enum class State : std::uint8_t { Free, Prepared, Live, Deleted };

    std::string _line; // of a deleted one "name:"
    std::uint32_t _nameSize = 0;
    State _state = State::Free;
    bool _isNopersist = false;
    bool _isPurged = false;
    Revision _changed = NEVER;
    Revision _created = NEVER; // set for the first time since it was last deleted
    Revision _oldest = NEVER;  // the same of its first life that is remembered
};

} // namespace kelp::device
