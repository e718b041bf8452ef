// SPDX-License-Identifier: Apache-2.0
// The server of an object and its clients: numbers the clients, tells the server who comes and goes, and
// carries messages between them under the name line "@name.<client>". An object that has a server owns it.
//
// A client that comes and goes before the server has read of it, without a word, leaves nothing: so what
// waits for a server that does not read is bounded by the messages' bound and the descriptors that are open.
#pragma once

#include "MessageReader.h"

#include <unordered_map>

namespace kelp::device {

class Change;

class Server
{
public:
    // The server reads from inbox, which has to outlive this. No message is longer than mostBytes.
    Server(std::string_view objectName, MessageReader &inbox, std::size_t mostBytes);

    // The number of a client that has come, from 1, never used again. outbox is null if it does not
    // subscribe, and has to stay until the client goes.
    unsigned connect(MessageReader *outbox);
    void disconnect(unsigned client);

    // A checked write of the client or the server is a message for the other. Returns 0, or an errno as
    // Store::write(). What a client that does not subscribe would get is dropped.
    int writeOf(unsigned client, const Change &change);
    int writeOfServer(const Change &change);

    // The object is being deleted: after what waits for them already, all read that as the last.
    void end();

private:
    struct Client {
        MessageReader *outbox = nullptr;
        MessageReader::Ticket arrival; // its notice
        bool hasWritten = false;
    };

    // "<flag>@name.<client>\n"
    std::string nameLine(std::string_view flag, unsigned client) const;
    // Takes "name.<client>" apart; false if it is none.
    bool findNumber(std::string_view text, unsigned &client) const;

    const std::string _objectName;
    MessageReader &_inbox;
    const std::size_t _mostBytes;
    std::unordered_map<unsigned, Client> _clients;
    unsigned _lastClient = 0;
};

} // namespace kelp::device
