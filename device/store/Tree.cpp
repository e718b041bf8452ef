// SPDX-License-Identifier: Apache-2.0
#include "Tree.h"

#include "Server.h"

#include <cerrno>

namespace kelp::device {

namespace {

constexpr mode_t DIRECTORY_MODE = 0777; // what may be done is a matter of each object

} // namespace

Tree::Tree(std::size_t mostNodes)
    : _mostNodes(mostNodes),
      _root(std::make_unique<Directory>(nullptr, "", Permissions{DIRECTORY_MODE, 0, 0}))
{}

int Tree::find(const ObjectPath &path, Place &place) const
{
    place = {};
    place.directory = _root.get();
    for (const std::string_view part : path.parts()) {
        if (part == ".all") {
            place.isAll = path.namesAll();
            return place.isAll ? 0 : ENOTDIR;
        }
        const Directory::Node *node = place.directory->find(part);
        if (node == nullptr) {
            return ENOENT;
        }
        ++place.depth;
        if (node->object) {
            place.object = node->object;
            const bool isLast = place.depth == path.parts().size() && !path.namesDirectory();
            return isLast ? 0 : ENOTDIR;
        }
        place.directory = node->directory.get();
    }
    return 0;
}

int Tree::check(const ObjectPath &path, const Place &place, const Permissions &permissions) const
{
    if (path.holdsAll()) {
        return ENOENT;
    }
    if (path.namesDirectory()) {
        return EISDIR;
    }
    const bool hasRoom = _nodes + path.parts().size() - place.depth <= _mostNodes;
    return hasRoom || permissions.isReserved ? 0 : ENOSPC;
}

// All but the last part.
void Tree::addDirectories(const ObjectPath &path, Place &place, const Permissions &permissions)
{
    const Permissions open = {DIRECTORY_MODE, permissions.uid, permissions.gid};
    for (; place.depth + 1 < path.parts().size(); ++place.depth) {
        place.directory = &place.directory->addDirectory(path.parts()[place.depth], open);
        ++_nodes;
    }
}

int Tree::create(const ObjectPath &path, Place &place, const Permissions &permissions, bool nopersist,
                 Revision now)
{
    if (const int error = check(path, place, permissions); error != 0) {
        return error;
    }
    addDirectories(path, place, permissions);
    std::string full = place.directory->prefix() + std::string(path.parts().back());
    place.object = std::make_shared<Object>(*place.directory, std::move(full), permissions, nopersist, now);
    place.directory->addObject(place.object);
    ++place.depth;
    ++_nodes;
    return 0;
}

void Tree::createDirectory(const ObjectPath &path, Place &place, const Permissions &permissions)
{
    addDirectories(path, place, permissions);
    place.directory = &place.directory->addDirectory(path.parts().back(), permissions);
    ++place.depth;
    ++_nodes;
}

void Tree::remove(const Object &object)
{
    object.directory().remove(object.name());
    --_nodes;
}

void Tree::prune(Directory &directory)
{
    for (Directory *idle = &directory; idle->isIdle(); --_nodes) {
        Directory *const parent = idle->parent();
        parent->remove(idle->name());
        idle = parent;
    }
}

} // namespace kelp::device
