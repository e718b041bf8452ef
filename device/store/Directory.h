// SPDX-License-Identifier: Apache-2.0
// One directory: what it holds by name, and who watches all that is below it. It stays while it holds
// anything or is watched, so objects and watchers may refer to theirs. Tree makes and removes them.
#pragma once

#include "Object.h"

#include <map>

namespace kelp::device {

class AllReader;

class Directory
{
public:
    struct Node { // one of the two
        std::unique_ptr<Directory> directory;
        std::shared_ptr<Object> object;
    };
    using Nodes = std::map<std::string, Node, std::less<>>;

    // The root's parent is null and its path empty.
    Directory(Directory *parent, std::string path, const Permissions &permissions);

    Directory *parent() const { return _parent; }
    // Within its parent.
    std::string_view name() const;
    // What the paths of all below begin with: the path from the root with a slash at its end; the root's is
    // empty.
    const std::string &prefix() const { return _prefix; }
    const Permissions &permissions() const { return _permissions; }

    const Nodes &nodes() const { return _nodes; }
    const Node *find(std::string_view name) const;
    Directory &addDirectory(std::string_view name, const Permissions &permissions);
    void addObject(std::shared_ptr<Object> object);
    void remove(std::string_view name);
    // Nothing is left that needs it. The root is always needed, and so is what is reserved.
    bool isIdle() const
    {
        return _parent != nullptr && !_permissions.isReserved && _nodes.empty() && _watchers.empty();
    }

    // Those that read its ".all".
    const std::vector<AllReader *> &watchers() const { return _watchers; }
    void addWatcher(AllReader &watcher) { _watchers.push_back(&watcher); }
    void removeWatcher(AllReader &watcher);

private:
    Directory *const _parent;
    const std::string _prefix;
    const Permissions _permissions;
    Nodes _nodes;
    std::vector<AllReader *> _watchers;
};

} // namespace kelp::device
