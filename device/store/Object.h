// SPDX-License-Identifier: Apache-2.0
// One object: what it is called, who may use it, its attributes, and where its subscribers wait for news.
// Kept by its directory and by the descriptors that have it open, so that a deleted one lasts until its last
// reader has heard of it. Only Publisher changes objects, and tells those who watch from ".all".
#pragma once

#include "Attributes.h"
#include "Permissions.h"
#include "Ring.h"

#include <memory>

namespace kelp::device {

class Directory;
class Server;

class Object
{
public:
    Object(Directory &directory, std::string path, const Permissions &permissions, bool nopersist,
           Revision birth);
    ~Object();

    // From the root, without a slash in front.
    const std::string &path() const { return _path; }
    // Within its directory.
    std::string_view name() const { return std::string_view(_path).substr(_nameAt); }
    Directory &directory() const { return _directory; } // until it is deleted
    const Permissions &permissions() const { return _permissions; }
    bool isNopersist() const { return _nopersist; } // it goes with its last publisher, or reader
    Revision birth() const { return _birth; }       // no two objects have the same
    Revision revision() const { return _revision; } // of its last change
    bool isDeleted() const { return _deleted; }
    bool isPurged() const { return _purged; } // deleted because its last publisher went
    const Attributes &attributes() const { return _attributes; }
    // Of its whole text without flags.
    std::size_t bytes() const { return name().size() + 2 + _attributes.bytes(); }

    // Null: it is an ordinary object.
    Server *server() const { return _server.get(); }
    void serve(std::unique_ptr<Server> server);

    // For Publisher. One that changes something is followed by changed() or markDeleted().
    Attributes &editAttributes() { return _attributes; }
    // Its subscribers become due.
    void changed(Revision now, Ring &due);
    void markDeleted(Revision now, bool purged, Ring &due);
    // Forgets deleted names once no reader is behind.
    void forgetWhatAllHaveRead();

    // Descriptors that have it open.
    void opened(bool publishes);
    void closed(bool publishes);
    bool isOpen() const { return _descriptors > 0; }
    bool isPublished() const { return _publishers > 0; }

    // Subscribers of this object alone, and those of ".all" that have not read its last change.
    Ring &waiting() { return _waiting; } // those who are told of the next change
    void addReader() { ++_readers; }
    void removeReader(Revision seen);
    void hasRead(Revision seen);
    void addBehind() { ++_allBehind; }
    void removeBehind() { --_allBehind; }

private:
    Directory &_directory;
    const std::string _path;
    const std::size_t _nameAt;
    const Permissions _permissions;
    const bool _nopersist;
    const Revision _birth;
    Revision _revision;
    Attributes _attributes;
    std::unique_ptr<Server> _server;
    Ring _waiting;
    unsigned _descriptors = 0;
    unsigned _publishers = 0;
    unsigned _readers = 0;
    unsigned _readersUpToDate = 0;
    unsigned _allBehind = 0;
    bool _deleted = false;
    bool _purged = false;
};

} // namespace kelp::device
