// SPDX-License-Identifier: Apache-2.0
#include "Opener.h"

#include "AllReader.h"
#include "ObjectReader.h"
#include "Server.h"

#include <unistd.h>

#include <cerrno>

namespace kelp::device {

Opener::Opener(Publisher &publisher, const StoreLimits &limits) : _publisher(publisher), _limits(limits) {}

int Opener::open(std::string_view text, const Store::OpenFlags &flags, const Credentials &who,
                 DescriptorId id, std::unique_ptr<Descriptor> &descriptor)
{
    if (const int error = _path.parse(text); error != 0) {
        return error;
    }
    if (!isConsistent(flags)) {
        return EINVAL;
    }
    Tree::Place place;
    if (const int error = prepare(place, flags, who); error != 0) {
        return error;
    }
    if (place.isAll) {
        descriptor = openAll(*place.directory, flags, id);
    } else if (_path.options().server || place.object->server() != nullptr) {
        descriptor = openConversation(std::move(place.object), flags, id);
    } else {
        descriptor = openOrdinary(std::move(place.object), flags, id);
    }
    return 0;
}

bool Opener::isConsistent(const Store::OpenFlags &flags) const
{
    const ObjectPath::Options &options = _path.options();
    if (!flags.subscribe && (options.delta || options.wait || !flags.publish)) {
        return false;
    }
    return !options.server || (flags.subscribe && flags.publish && !options.delta);
}

int Opener::prepare(Tree::Place &place, const Store::OpenFlags &flags, const Credentials &who)
{
    const int error = _publisher.tree().find(_path, place);
    if (error == ENOENT && flags.create) {
        if (!place.directory->permissions().allow(who, W_OK)) {
            return EACCES;
        }
        const Permissions permissions = {flags.mode & 0777, who.uid, who.gid, who.isDevice};
        return _publisher.create(_path, place, permissions, _path.options().nopersist);
    }
    if (error != 0) {
        return error;
    }
    if (const int refusal = place.isAll ? admitToAll(flags) : admit(place, flags, who); refusal != 0) {
        return refusal;
    }
    if (flags.truncate && place.object->server() == nullptr) {
        _publisher.truncate(*place.object);
    }
    return 0;
}

int Opener::admitToAll(const Store::OpenFlags &flags) const
{
    if (flags.create && flags.exclusive) {
        return EEXIST;
    }
    return flags.publish || flags.truncate ? EACCES : 0;
}

int Opener::admit(const Tree::Place &place, const Store::OpenFlags &flags, const Credentials &who) const
{
    if (flags.create && flags.exclusive) {
        return EEXIST;
    }
    if (!place.object) {
        return EISDIR;
    }
    const int wanted = (flags.subscribe ? R_OK : 0) | (flags.publish || flags.truncate ? W_OK : 0);
    if (!place.object->permissions().allow(who, wanted)) {
        return EACCES;
    }
    return _path.options().server && place.object->isOpen() ? EBUSY : 0;
}

Descriptor::Access Opener::accessOf(const Store::OpenFlags &flags) const
{
    return {flags.publish, _path.options().nopersist, _path.options().wait};
}

std::unique_ptr<Descriptor> Opener::openAll(Directory &directory, const Store::OpenFlags &flags,
                                            DescriptorId id)
{
    const AllReader::Surroundings store = {_publisher.texts(), _publisher.due(), _publisher.now(),
                                           _limits.objectBytes};
    auto reader = std::make_unique<AllReader>(id, directory, _path.options().delta, store);
    auto descriptor = std::make_unique<Descriptor>(_publisher, nullptr, accessOf(flags), std::move(reader));
    descriptor->watch(directory);
    return descriptor;
}

std::unique_ptr<Descriptor> Opener::openOrdinary(std::shared_ptr<Object> object,
                                                 const Store::OpenFlags &flags, DescriptorId id)
{
    std::unique_ptr<Reader> reader;
    if (flags.subscribe) {
        reader = std::make_unique<ObjectReader>(id, object, _path.options().delta, _publisher.texts(),
                                                _publisher.due());
    }
    return std::make_unique<Descriptor>(_publisher, std::move(object), accessOf(flags), std::move(reader));
}

std::unique_ptr<Descriptor> Opener::openConversation(std::shared_ptr<Object> object,
                                                     const Store::OpenFlags &flags, DescriptorId id)
{
    std::unique_ptr<MessageReader> reader;
    if (flags.subscribe) {
        reader = std::make_unique<MessageReader>(id, _publisher.due(), _limits);
    }
    MessageReader *const inbox = reader.get();
    auto descriptor =
        std::make_unique<Descriptor>(_publisher, std::move(object), accessOf(flags), std::move(reader));
    if (_path.options().server) {
        descriptor->serve(*inbox);
    } else {
        descriptor->connect(inbox);
    }
    return descriptor;
}

} // namespace kelp::device
