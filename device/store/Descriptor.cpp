// SPDX-License-Identifier: Apache-2.0
#include "Descriptor.h"

#include "Server.h"

#include <cerrno>

namespace kelp::device {

Descriptor::Descriptor(Publisher &publisher, std::shared_ptr<Object> object, const Access &access,
                       std::unique_ptr<Reader> reader)
    : _publisher(publisher),
      _object(std::move(object)),
      _access(access),
      _reader(std::move(reader))
{
    if (_object) {
        _object->opened(_access.publishes);
    }
}

Descriptor::~Descriptor() = default;

void Descriptor::serve(MessageReader &inbox)
{
    _role = Role::Server;
    _publisher.serve(*_object, inbox);
}

void Descriptor::connect(MessageReader *inbox)
{
    _role = Role::Client;
    _client = _object->server()->connect(inbox);
}

void Descriptor::close()
{
    if (_watched != nullptr) {
        _reader.reset();
        _publisher.unwatch(*_watched);
    }
    if (!_object) {
        return;
    }
    _object->closed(_access.publishes);
    if (_object->isDeleted()) {
        return;
    }
    if (_role == Role::Server) {
        _publisher.remove(*_object, false);
    } else if (_role == Role::Client) {
        _object->server()->disconnect(_client);
    } else if (isLast()) {
        _publisher.abandon(*_object);
    }
}

// Nobody is left to whom what it or others have published is bound. An object that never had a publisher is
// bound to those who have it open.
bool Descriptor::isLast() const
{
    const bool isUnbound = _object->isNopersist() && !_object->isOpen();
    return !_object->isPublished() && (_access.publishes || isUnbound);
}

int Descriptor::write(std::string_view text, Change &change, std::size_t mostBytes)
{
    if (_object->isDeleted()) {
        return ESTALE;
    }
    if (text.size() > mostBytes) {
        return EMSGSIZE;
    }
    if (const int error = change.parse(text); error != 0) {
        return error;
    }
    switch (_role) {
    case Role::Server:
        return _object->server()->writeOfServer(change);
    case Role::Client:
        return _object->server()->writeOf(_client, change);
    case Role::Ordinary:
        break;
    }
    return _publisher.write(*_object, change, _access.nopersist);
}

} // namespace kelp::device
