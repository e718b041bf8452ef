// SPDX-License-Identifier: Apache-2.0
#include "MessageReader.h"

namespace kelp::device {

MessageReader::MessageReader(DescriptorId id, Ring &due, const StoreLimits &limits)
    : Reader(id),
      _due(due),
      _mostMessages(limits.queuedMessages),
      _mostBytes(limits.queuedBytes)
{}

bool MessageReader::isFullFor(std::size_t bytes) const
{
    return _waiting >= _mostMessages || (_waiting > 0 && _waitingBytes + bytes > _mostBytes);
}

MessageReader::Ticket MessageReader::append(std::string text, bool isNotice)
{
    // News for a reader without any; and for one whose message has been rendered with nothing behind it.
    if (_messages.empty() || (_messages.size() == 1 && _firstIsRendered)) {
        _due.append(*this);
    }
    _messages.push_back({++_lastNumber, isNotice, std::move(text)});
    return {_lastNumber, std::prev(_messages.end())};
}

void MessageReader::push(std::string text)
{
    ++_waiting;
    _waitingBytes += text.size();
    (void)append(std::move(text), false); // messages are not taken back
}

MessageReader::Ticket MessageReader::pushNotice(std::string text)
{
    return append(std::move(text), true);
}

bool MessageReader::withdraw(const Ticket &ticket)
{
    const bool hasGone = _messages.empty() || ticket.number < _messages.front().number;
    if (hasGone || (_firstIsRendered && ticket.number == _messages.front().number)) {
        return false;
    }
    _messages.erase(ticket.place);
    if (_messages.empty()) {
        leave();
    }
    return true;
}

Store::Rendered MessageReader::render()
{
    leave();
    if (_messages.empty()) {
        return {};
    }
    const Message &first = _messages.front();
    if (!_firstIsRendered && !first.isNotice) {
        --_waiting;
        _waitingBytes -= first.text.size();
    }
    _firstIsRendered = true;
    return {first.text, _messages.size() > 1};
}

void MessageReader::commit()
{
    if (!_firstIsRendered) {
        return;
    }
    _firstIsRendered = false;
    _messages.pop_front();
    if (!_messages.empty()) {
        _due.append(*this);
    }
}

} // namespace kelp::device
