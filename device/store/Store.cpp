// SPDX-License-Identifier: Apache-2.0
// The facade: numbers the descriptors, and answers questions about paths.
#include "Store.h"

#include "Opener.h"
#include "Server.h"

#include <unistd.h>

#include <cerrno>
#include <unordered_map>

namespace kelp::device {

namespace {

constexpr mode_t ALL_MODE = 0444;
constexpr mode_t RESERVED_DIRECTORY_MODE = 0555;

Store::Status statusOf(const Object &object)
{
    const Permissions &permissions = object.permissions();
    return {false, permissions.mode, permissions.uid, permissions.gid, object.bytes()};
}

Store::Status statusOf(const Directory &directory)
{
    const Permissions &permissions = directory.permissions();
    return {true, permissions.mode, permissions.uid, permissions.gid, 0};
}

} // namespace

class Store::Private
{
public:
    explicit Private(const StoreLimits &bounds) : limits(bounds), publisher(bounds), opener(publisher, bounds)
    {}

    Descriptor *find(DescriptorId id) const
    {
        const auto found = descriptors.find(id);
        return found == descriptors.end() ? nullptr : found->second.get();
    }

    Reader *readerOf(DescriptorId id) const
    {
        Descriptor *const descriptor = find(id);
        return descriptor == nullptr ? nullptr : descriptor->reader();
    }

    static int find(const Tree &tree, std::string_view text, Tree::Place &place)
    {
        ObjectPath path;
        const int error = path.parse(text);
        return error != 0 ? error : tree.find(path, place);
    }

    const StoreLimits limits;
    Publisher publisher;
    Opener opener;
    std::unordered_map<DescriptorId, std::unique_ptr<Descriptor>> descriptors;
    DescriptorId lastDescriptor = 0;
    Change change; // of the write that is being made
};

Store::Store(const StoreLimits &limits) : d(std::make_unique<Private>(limits)) {}

Store::~Store() = default;

const StoreLimits &Store::limits() const
{
    return d->limits;
}

int Store::open(std::string_view path, const OpenFlags &flags, const Credentials &who,
                DescriptorId &descriptor)
{
    const DescriptorId id = d->lastDescriptor + 1;
    if (id == 0) {
        return EMFILE;
    }
    std::unique_ptr<Descriptor> opened;
    if (const int error = d->opener.open(path, flags, who, id, opened); error != 0) {
        return error;
    }
    d->descriptors.emplace(id, std::move(opened));
    d->lastDescriptor = descriptor = id;
    return 0;
}

void Store::close(DescriptorId descriptor)
{
    const auto found = d->descriptors.find(descriptor);
    if (found != d->descriptors.end()) {
        found->second->close();
        d->descriptors.erase(found);
    }
}

int Store::write(DescriptorId descriptor, std::string_view text)
{
    Descriptor *const written = d->find(descriptor);
    if (written == nullptr || !written->access().publishes) {
        return EBADF;
    }
    return written->write(text, d->change, d->limits.objectBytes);
}

int Store::unlink(std::string_view path, const Credentials &who)
{
    Tree::Place place;
    if (const int error = Private::find(d->publisher.tree(), path, place); error != 0) {
        return error;
    }
    if (place.isAll) {
        return EACCES;
    }
    if (!place.object) {
        return EISDIR;
    }
    if (!place.object->permissions().allow(who, W_OK)) {
        return EACCES;
    }
    d->publisher.remove(*place.object, false);
    return 0;
}

int Store::reserveDirectory(std::string_view text)
{
    ObjectPath path;
    if (const int error = path.parse(text); error != 0 || path.holdsAll()) {
        return error != 0 ? error : EINVAL;
    }
    Tree::Place place;
    const int error = d->publisher.tree().find(path, place);
    if (error != ENOENT) {
        return error == 0 ? EEXIST : error;
    }
    d->publisher.createDirectory(path, place, {RESERVED_DIRECTORY_MODE, 0, 0, true});
    return 0;
}

int Store::status(std::string_view path, Status &status) const
{
    Tree::Place place;
    if (const int error = Private::find(d->publisher.tree(), path, place); error != 0) {
        return error;
    }
    status = place.object ? statusOf(*place.object) : statusOf(*place.directory);
    if (place.isAll) {
        status.isDirectory = false;
        status.mode = ALL_MODE;
    }
    return 0;
}

int Store::access(std::string_view path, int mode, const Credentials &who) const
{
    Tree::Place place;
    if (const int error = Private::find(d->publisher.tree(), path, place); error != 0) {
        return error;
    }
    if (place.isAll) {
        return (mode & (W_OK | X_OK)) != 0 ? EACCES : 0;
    }
    const Permissions &permissions =
        place.object ? place.object->permissions() : place.directory->permissions();
    return permissions.allow(who, mode) ? 0 : EACCES;
}

int Store::list(std::string_view path, std::vector<Entry> &entries) const
{
    Tree::Place place;
    if (const int error = Private::find(d->publisher.tree(), path, place); error != 0) {
        return error;
    }
    if (place.object || place.isAll) {
        return ENOTDIR;
    }
    entries.clear();
    for (const auto &[name, node] : place.directory->nodes()) {
        entries.push_back({name, node.object ? statusOf(*node.object) : statusOf(*node.directory)});
    }
    return 0;
}

std::vector<DescriptorId> Store::takeDue()
{
    std::vector<DescriptorId> ids;
    while (Ring::Node *node = d->publisher.due().first()) {
        auto *const reader = static_cast<Reader *>(node);
        ids.push_back(reader->id());
        reader->rest();
    }
    return ids;
}

Store::Rendered Store::render(DescriptorId descriptor)
{
    Reader *const reader = d->readerOf(descriptor);
    return reader == nullptr ? Rendered() : reader->render();
}

void Store::commit(DescriptorId descriptor)
{
    if (Reader *const reader = d->readerOf(descriptor)) {
        reader->commit();
    }
}

bool Store::waits(DescriptorId descriptor) const
{
    const Descriptor *const asked = d->find(descriptor);
    return asked != nullptr && asked->access().waits;
}

} // namespace kelp::device
