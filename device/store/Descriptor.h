// SPDX-License-Identifier: Apache-2.0
// One open descriptor: what it has open, what it may do there, and its reader. Made by Opener, kept by Store.
#pragma once

#include "Publisher.h"
#include "Reader.h"

namespace kelp::device {

class Descriptor
{
public:
    enum class Role {
        Ordinary, // a reader and publisher of the object's state, or of ".all"
        Server,
        Client,
    };
    struct Access {
        bool publishes = false;
        bool nopersist = false;
        bool waits = false;
    };

    // Of an object, or with a null object of ".all". reader is null if it does not subscribe. publisher has
    // to outlive it.
    Descriptor(Publisher &publisher, std::shared_ptr<Object> object, const Access &access,
               std::unique_ptr<Reader> reader);
    ~Descriptor();
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    // Makes it the object's server, or the server's client; inbox is its reader, or null.
    void serve(MessageReader &inbox);
    void connect(MessageReader *inbox);
    // Its reader watches the directory.
    void watch(Directory &directory) { _watched = &directory; }

    // Everything that closing means for others. The descriptor is only good for destruction then.
    void close();

    // As Store::write(), for what publishes. change is a buffer.
    int write(std::string_view text, Change &change, std::size_t mostBytes);

    Reader *reader() { return _reader.get(); }
    const Access &access() const { return _access; }

private:
    bool isLast() const;

    Publisher &_publisher;
    const std::shared_ptr<Object> _object;
    const Access _access;
    std::unique_ptr<Reader> _reader;
    Directory *_watched = nullptr;
    Role _role = Role::Ordinary;
    unsigned _client = 0; // the client's number
};

} // namespace kelp::device
