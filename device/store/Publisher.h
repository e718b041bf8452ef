// SPDX-License-Identifier: Apache-2.0
// Makes and changes objects, and lets everybody know who watches them. Every change of the store takes place
// here, each with a revision of its own.
#pragma once

#include "ObjectText.h"
#include "Tree.h"

namespace kelp::device {

class AllReader;
class MessageReader;

class Publisher
{
public:
    explicit Publisher(const StoreLimits &limits);

    const Tree &tree() const { return _tree; }
    ObjectText &texts() { return _texts; }
    Ring &due() { return _due; }                 // of readers that have news
    const Revision &now() const { return _now; } // of the last change

    // As Tree::create().
    int create(const ObjectPath &path, Tree::Place &place, const Permissions &permissions, bool nopersist);
    // As Tree::createDirectory().
    void createDirectory(const ObjectPath &path, Tree::Place &place, const Permissions &permissions)
    {
        _tree.createDirectory(path, place, permissions); // nobody watches directories
    }
    // Returns 0, or EINVAL, EMSGSIZE.
    int write(Object &object, const Change &change, bool nopersist);
    void truncate(Object &object);
    // Its last publisher has gone.
    void abandon(Object &object);
    // Keep it until this returns: its directory lets go of it, and may go itself.
    void remove(Object &object, bool purged);
    // Somebody who watched it has gone.
    void unwatch(Directory &directory) { _tree.prune(directory); }
    // Makes it an object that is served, without attributes and out of sight of ".all".
    void serve(Object &object, MessageReader &inbox);

private:
    void announce(Object &object);
    template <class Tell>
    void tellWatchers(const Object &object, Tell tell) const;

    const StoreLimits _limits;
    Revision _now = NEVER + 1; // a change comes after something, so that nobody has seen NEVER of it
    Ring _due;
    ObjectText _texts;
    Tree _tree;
};

} // namespace kelp::device
