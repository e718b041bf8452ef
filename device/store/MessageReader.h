// SPDX-License-Identifier: Apache-2.0
// Reads messages, one at a time in their order: what a server reads of its clients, or a client of its
// server. Server fills it.
#pragma once

#include "Reader.h"

#include <cstdint>
#include <list>
#include <string>

namespace kelp::device {

class MessageReader : public Reader
{
    struct Message {
        std::uint64_t number = 0;
        bool isNotice = false;
        std::string text;
    };

public:
    // Says which message it was, even when that is long gone.
    struct Ticket {
        std::uint64_t number = 0;
        std::list<Message>::iterator place; // while the message waits
    };

    // due has to outlive it.
    MessageReader(DescriptorId id, Ring &due, const StoreLimits &limits);

    // Whether one more of that size is too much for what waits. A message that has been rendered does not:
    // its reader may have read it, and commits only when it comes for the next.
    bool isFullFor(std::size_t bytes) const;
    void push(std::string text);
    // One that does not count towards the bound: that somebody came or went.
    Ticket pushNotice(std::string text);
    // Takes a notice back; false if it has been rendered.
    bool withdraw(const Ticket &ticket);

    Store::Rendered render() override;
    void commit() override;

private:
    Ticket append(std::string text, bool isNotice);

    Ring &_due;
    const std::size_t _mostMessages;
    const std::size_t _mostBytes;
    std::list<Message> _messages;
    std::size_t _waiting = 0; // messages that are no notices and have not been rendered
    std::size_t _waitingBytes = 0;
    std::uint64_t _lastNumber = 0;
    bool _firstIsRendered = false;
};

} // namespace kelp::device
