// SPDX-License-Identifier: Apache-2.0
// The attributes of one object in the order in which they were created, as the lines that readers get, and
// the names of deleted ones that readers have still to hear of. Each knows when it came, changed and went, so
// that the text for any reader follows from what that reader has seen. Objects own one; only Publisher
// changes it.
//
// A change comes in two steps, so that one that makes the object too large leaves no trace:
//
//     if (attributes.prepare(steps) > limit) {
//         attributes.abandon();
//     } else if (attributes.apply(steps, nopersist, revision)) {
//         ...                                                    // something changed
//     }
#pragma once

#include "Attribute.h"
#include "Change.h"
#include "NameIndex.h"

namespace kelp::device {

class Attributes
{
public:
    using Steps = std::vector<Change::Step>;

    // Bytes of all lines.
    std::size_t bytes() const { return _bytes; }

    // What bytes() will be once the steps have been applied. abandon() or apply(), with the same steps, is
    // next.
    std::size_t prepare(const Steps &steps);
    void abandon();
    // Whether anything changed: a deletion of what is not there does not, a value set once more does.
    bool apply(const Steps &steps, bool nopersist, Revision now);

    // Drops all; whether there were any. Readers are not told which.
    bool truncate(Revision now);
    // Deletes those that were last set with nopersist; whether there were any.
    bool purge(Revision now);

    // Remembers at most that many deleted names; readers that have still to hear of the others get all anew.
    void limitDeleted(std::size_t most);
    // Every reader has heard of every deleted name.
    void forgetDeleted();
    // Drops everything for good.
    void clear();

    // Whether what is left does not tell a reader what went since then.
    bool isTruncatedFor(Revision seen) const { return seen != NEVER && seen < _truncated; }
    // Whether anything went since then that the reader may have seen.
    bool hasLostSince(Revision seen) const;
    // The lines for a reader that has seen everything up to then: all, or with delta only what changed.
    void appendTo(std::string &text, Revision seen, bool delta) const;

private:
    std::uint32_t find(std::string_view name);
    std::uint32_t append(Attribute attribute);
    std::uint32_t slotFor(const Change::Step &step);
    bool applyTo(Attribute &attribute, const Change::Step &step, bool nopersist, Revision now);
    void remove(Attribute &attribute, bool purged, Revision now);
    void discard(Attribute &attribute);
    void compact();

    std::vector<Attribute> _entries;
    NameIndex _index;                    // of all entries, while there are many
    std::vector<std::uint32_t> _touched; // slots of the change in preparation, in the order of their lines
    std::uint32_t _next = 0;             // where the next name is looked for first
    std::size_t _bytes = 0;
    std::size_t _holes = 0;
    std::size_t _deleted = 0;
    Revision _truncated = NEVER;
};

} // namespace kelp::device
