// SPDX-License-Identifier: Apache-2.0
#include "Object.h"

#include "Server.h"

namespace kelp::device {

Object::Object(Directory &directory, std::string path, const Permissions &permissions, bool nopersist,
               Revision birth)
    : _directory(directory),
      _path(std::move(path)),
      _nameAt(_path.rfind('/') + 1), // no slash: 0
      _permissions(permissions),
      _nopersist(nopersist),
      _birth(birth),
      _revision(birth)
{}

Object::~Object() = default;

void Object::serve(std::unique_ptr<Server> server)
{
    _server = std::move(server);
}

void Object::changed(Revision now, Ring &due)
{
    _revision = now;
    _readersUpToDate = 0;
    due.appendAll(_waiting);
}

void Object::markDeleted(Revision now, bool purged, Ring &due)
{
    _deleted = true;
    _purged = purged;
    _attributes.clear();
    _server.reset();
    changed(now, due);
}

void Object::forgetWhatAllHaveRead()
{
    if (_readersUpToDate == _readers && _allBehind == 0) {
        _attributes.forgetDeleted();
    }
}

void Object::opened(bool publishes)
{
    ++_descriptors;
    _publishers += publishes ? 1 : 0;
}

void Object::closed(bool publishes)
{
    --_descriptors;
    _publishers -= publishes ? 1 : 0;
}

void Object::removeReader(Revision seen)
{
    --_readers;
    _readersUpToDate -= seen == _revision ? 1 : 0;
    forgetWhatAllHaveRead();
}

void Object::hasRead(Revision seen)
{
    if (seen == _revision) {
        ++_readersUpToDate;
        forgetWhatAllHaveRead();
    }
}

} // namespace kelp::device
