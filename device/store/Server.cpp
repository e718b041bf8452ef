// SPDX-License-Identifier: Apache-2.0
#include "Server.h"

#include "Change.h"

#include <cerrno>
#include <charconv>

namespace kelp::device {

namespace {

int send(MessageReader &reader, std::string text, std::size_t mostBytes)
{
    if (text.size() > mostBytes) {
        return EMSGSIZE;
    }
    if (reader.isFullFor(text.size())) {
        return EAGAIN;
    }
    reader.push(std::move(text));
    return 0;
}

} // namespace

Server::Server(std::string_view objectName, MessageReader &inbox, std::size_t mostBytes)
    : _objectName(objectName),
      _inbox(inbox),
      _mostBytes(mostBytes)
{}

std::string Server::nameLine(std::string_view flag, unsigned client) const
{
    std::string line(flag);
    line += '@';
    line += _objectName;
    line += '.';
    line += std::to_string(client);
    line += '\n';
    return line;
}

bool Server::findNumber(std::string_view text, unsigned &client) const
{
    if (text.size() < _objectName.size() + 2 || !text.starts_with(_objectName) ||
        text[_objectName.size()] != '.') {
        return false;
    }
    const std::string_view digits = text.substr(_objectName.size() + 1);
    const char *const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, client);
    // Numbers beyond all that there can be are numbers of no client, not malformed.
    client = error == std::errc::result_out_of_range ? 0 : client;
    return last == end && error != std::errc::invalid_argument && digits.front() != '0';
}

unsigned Server::connect(MessageReader *outbox)
{
    const unsigned number = ++_lastClient;
    _clients[number] = {outbox, _inbox.pushNotice(nameLine("+", number)), false};
    return number;
}

void Server::disconnect(unsigned number)
{
    const Client client = _clients.at(number);
    _clients.erase(number);
    if (client.hasWritten || !_inbox.withdraw(client.arrival)) {
        (void)_inbox.pushNotice(nameLine("-", number)); // never taken back
    }
}

int Server::writeOf(unsigned number, const Change &change)
{
    const std::string_view name = change.objectName();
    if (!name.empty() && name != _objectName) {
        return EINVAL;
    }
    if (name.empty() && change.steps().empty()) {
        return 0;
    }
    const int error = send(_inbox, nameLine("", number).append(change.body()), _mostBytes);
    _clients.at(number).hasWritten |= error == 0;
    return error;
}

int Server::writeOfServer(const Change &change)
{
    unsigned number = 0;
    if (!findNumber(change.objectName(), number)) {
        return EINVAL;
    }
    const auto client = _clients.find(number);
    if (client == _clients.end()) {
        return ESTALE;
    }
    if (client->second.outbox == nullptr) {
        return 0;
    }
    return send(*client->second.outbox, ("@" + _objectName + "\n").append(change.body()), _mostBytes);
}

void Server::end()
{
    const std::string text = "-@" + _objectName + "\n";
    (void)_inbox.pushNotice(text); // never taken back, as those below
    for (const auto &[number, client] : _clients) {
        if (client.outbox != nullptr) {
            (void)client.outbox->pushNotice(text);
        }
    }
}

} // namespace kelp::device
