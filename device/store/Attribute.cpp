// SPDX-License-Identifier: Apache-2.0
#include "Attribute.h"

namespace kelp::device {

namespace {

constexpr std::size_t SPARE_BYTES = 256; // of a line's buffer, that may stay unused

} // namespace

void Attribute::set(std::string_view line, bool isNopersist, Revision now)
{
    if (!isLive()) {
        _oldest = isDeleted() ? _oldest : now;
        _created = now;
        _state = State::Live;
    }
    _line = line;
    if (_line.capacity() > 2 * line.size() + SPARE_BYTES) {
        _line.shrink_to_fit();
    }
    _isNopersist = isNopersist;
    _changed = now;
}

void Attribute::remove(bool purged, Revision now)
{
    _line.resize(_nameSize + 1);
    _line.shrink_to_fit();
    _state = State::Deleted;
    _isPurged = purged;
    _changed = now;
}

void Attribute::appendTo(std::string &text, Revision seen, bool isWanted) const
{
    const bool isNews = _changed > seen;
    if (isLive() && (isWanted || isNews)) {
        if (seen != NEVER && _created > seen) {
            text += '+';
        }
        text += _line;
    } else if (isDeleted() && isNews && _oldest <= seen) {
        text += _isPurged ? "-!" : "-";
        text += name();
        text += '\n';
    }
}

} // namespace kelp::device
