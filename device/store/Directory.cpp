// SPDX-License-Identifier: Apache-2.0
#include "Directory.h"

#include "Server.h"

#include <algorithm>

namespace kelp::device {

Directory::Directory(Directory *parent, std::string path, const Permissions &permissions)
    : _parent(parent),
      _prefix(path.empty() ? std::move(path) : std::move(path) + '/'),
      _permissions(permissions)
{}

std::string_view Directory::name() const
{
    const std::size_t parentSize = _parent == nullptr ? 0 : _parent->prefix().size();
    const std::string_view name = std::string_view(_prefix).substr(parentSize);
    return name.substr(0, name.find('/'));
}

const Directory::Node *Directory::find(std::string_view name) const
{
    const auto found = _nodes.find(name);
    return found == _nodes.end() ? nullptr : &found->second;
}

Directory &Directory::addDirectory(std::string_view name, const Permissions &permissions)
{
    Node &node = _nodes[std::string(name)];
    node.directory = std::make_unique<Directory>(this, _prefix + std::string(name), permissions);
    return *node.directory;
}

void Directory::addObject(std::shared_ptr<Object> object)
{
    _nodes[std::string(object->name())].object = std::move(object);
}

void Directory::remove(std::string_view name)
{
    _nodes.erase(_nodes.find(name));
}

void Directory::removeWatcher(AllReader &watcher)
{
    _watchers.erase(std::find(_watchers.begin(), _watchers.end(), &watcher));
}

} // namespace kelp::device
