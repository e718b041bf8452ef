// SPDX-License-Identifier: Apache-2.0
// The directories and objects by their paths, and how many there may be. Called by Publisher, which tells
// those who watch, and by Store to look things up.
#pragma once

#include "Directory.h"
#include "ObjectPath.h"

namespace kelp::device {

class Tree
{
public:
    // Where a path leads, as far as it does.
    struct Place {
        Directory *directory =
            nullptr; // the directory itself, the one that holds the object, or the last there is
        std::shared_ptr<Object> object;
        bool isAll = false;
        std::size_t depth = 0; // parts that have been found
    };

    explicit Tree(std::size_t mostNodes);

    // Returns 0: there is an object, else a directory, or ".all" of one; ENOENT, ENOTDIR.
    int find(const ObjectPath &path, Place &place) const;

    // Makes the object, and its directories, at a path that find() has just found missing. Returns 0 and sets
    // place.object, or ENOSPC (never for what is reserved), ENOENT (".all" below a directory that there is not),
    // EISDIR (a slash at its end).
    int create(const ObjectPath &path, Place &place, const Permissions &permissions, bool nopersist,
               Revision now);

    // Makes a directory, and those above it, at a path that find() has just found missing; for what is reserved.
    void createDirectory(const ObjectPath &path, Place &place, const Permissions &permissions);

    void remove(const Object &object);
    // The directory goes if nothing needs it any more, and so do those above it.
    void prune(Directory &directory);

private:
    int check(const ObjectPath &path, const Place &place, const Permissions &permissions) const;
    void addDirectories(const ObjectPath &path, Place &place, const Permissions &permissions);

    const std::size_t _mostNodes;
    std::size_t _nodes = 0;
    std::unique_ptr<Directory> _root;
};

} // namespace kelp::device
