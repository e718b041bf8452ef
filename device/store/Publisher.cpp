// SPDX-License-Identifier: Apache-2.0
#include "Publisher.h"

#include "AllReader.h"
#include "Server.h"

#include <cerrno>

namespace kelp::device {

Publisher::Publisher(const StoreLimits &limits)
    : _limits(limits),
      _texts(limits.objectBytes),
      _tree(limits.objects)
{}

template <class Tell>
void Publisher::tellWatchers(const Object &object, Tell tell) const
{
    for (const Directory *directory = &object.directory(); directory; directory = directory->parent()) {
        for (AllReader *watcher : directory->watchers()) {
            tell(*watcher);
        }
    }
}

int Publisher::create(const ObjectPath &path, Tree::Place &place, const Permissions &permissions,
                      bool nopersist)
{
    if (const int error = _tree.create(path, place, permissions, nopersist, _now + 1); error != 0) {
        return error;
    }
    ++_now;
    tellWatchers(*place.object, [&](AllReader &watcher) { watcher.created(*place.object); });
    return 0;
}

// The object has changed, at a revision of its own.
void Publisher::announce(Object &object)
{
    const Revision before = object.revision();
    object.changed(++_now, _due);
    tellWatchers(object, [&](AllReader &watcher) { watcher.changed(object, before); });
    object.forgetWhatAllHaveRead(); // if nobody reads it at all
    object.editAttributes().limitDeleted(_limits.rememberedNames);
}

int Publisher::write(Object &object, const Change &change, bool nopersist)
{
    if (!change.objectName().empty() && change.objectName() != object.name()) {
        return EINVAL;
    }
    Attributes &attributes = object.editAttributes();
    const std::size_t bytes = attributes.prepare(change.steps());
    if (object.bytes() - attributes.bytes() + bytes > _limits.objectBytes) {
        attributes.abandon();
        return EMSGSIZE;
    }
    if (attributes.apply(change.steps(), nopersist, _now + 1)) {
        announce(object);
    }
    return 0;
}

void Publisher::truncate(Object &object)
{
    if (object.editAttributes().truncate(_now + 1)) {
        announce(object);
    }
}

void Publisher::abandon(Object &object)
{
    if (object.isNopersist()) {
        remove(object, true);
    } else if (object.editAttributes().purge(_now + 1)) {
        announce(object);
    }
}

void Publisher::remove(Object &object, bool purged)
{
    const bool isServed = object.server() != nullptr;
    if (isServed) {
        object.server()->end();
    }
    _tree.remove(object);
    object.markDeleted(++_now, purged, _due);
    if (!isServed) {
        tellWatchers(object, [&](AllReader &watcher) { watcher.deleted(object); });
    }
    _tree.prune(object.directory());
}

void Publisher::serve(Object &object, MessageReader &inbox)
{
    object.editAttributes().clear();
    object.changed(++_now, _due);
    tellWatchers(object, [&](AllReader &watcher) { watcher.deleted(object); });
    object.serve(std::make_unique<Server>(object.name(), inbox, _limits.objectBytes));
}

} // namespace kelp::device
