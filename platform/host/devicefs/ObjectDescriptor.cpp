// SPDX-License-Identifier: Apache-2.0
// See ObjectDescriptor.h.

#include "ObjectDescriptor.h"

#include "WholeLines.h"

#include <cerrno>

#include <poll.h>
#include <sched.h>
#include <unistd.h>

namespace kelp::platform {

ObjectDescriptor::ObjectDescriptor(link::UniqueFd wake, const Terms &terms, int flags,
                                   std::optional<link::SlotReader> slot)
    : _wake(std::move(wake)),
      _terms(terms),
      _flags(flags & (O_ACCMODE | O_NONBLOCK)),
      _slot(std::move(slot))
{}

void ObjectDescriptor::setFlags(int flags)
{
    _flags = (_flags & O_ACCMODE) | (flags & O_NONBLOCK);
}

int ObjectDescriptor::read(std::span<char> buffer, std::size_t &length)
{
    if ((_flags & O_ACCMODE) == O_WRONLY || _isDisowned) {
        return EBADF;
    }
    for (;;) {
        const int error = tryRead(buffer, length);
        if (error != EAGAIN) {
            return error;
        }
        if (!_terms.waits) {
            length = 0;
            return 0;
        }
        if (_flags & O_NONBLOCK) {
            return EAGAIN;
        }
        if (const int interrupted = awaitReadable()) {
            return interrupted;
        }
    }
}

int ObjectDescriptor::write(std::string_view text)
{
    if ((_flags & O_ACCMODE) == O_RDONLY || _isDisowned) {
        return EBADF;
    }
    return DeviceConnection::instance().write(_terms.generation, _terms.number, text);
}

link::UniqueFd ObjectDescriptor::end()
{
    if (!_isDisowned) {
        DeviceConnection::Answer none;
        const link::DescriptorCall close{link::DescriptorCall::Kind::Close, _terms.number};
        // A device that has gone has closed it.
        (void)DeviceConnection::instance().ask(close, none, {}, _terms.generation);
    }
    return std::move(_wake);
}

// EAGAIN where there is nothing to read.
int ObjectDescriptor::tryRead(std::span<char> buffer, std::size_t &length)
{
    const std::lock_guard lock(_mutex);
    Byte byte = Byte::None;
    if (_text.empty()) {
        if (const int error = takeText(byte)) {
            return error;
        }
    }
    if (const int error = deliver(buffer, length)) {
        return error;
    }
    // The device puts the text first and the byte after it.
    while (byte == Byte::None && (byte = takeByte()) == Byte::None) {
        (void)awaitReadable(); // interrupted or not: the byte is on its way
    }
    if (!_more) {
        return 0;
    }
    DeviceConnection::Answer none;
    const link::DescriptorCall taken{link::DescriptorCall::Kind::Taken, _terms.number};
    // The text is the reader's already; that the device has gone shows at the next read.
    (void)DeviceConnection::instance().ask(taken, none, {}, _terms.generation);
    return 0;
}

// Takes the slot's text, and says what became of the byte on the way. Caller holds _mutex.
int ObjectDescriptor::takeText(Byte &byte)
{
    for (;;) {
        switch (_slot->take(_text, _more)) {
        case link::SlotReader::Result::Taken:
            return 0;
        case link::SlotReader::Result::Nothing:
            if (byte == Byte::Taken) {
                return ECONNRESET; // a byte without a text
            }
            byte = takeByte();
            if (byte != Byte::Taken) {
                return byte == Byte::Ended ? ECONNRESET : EAGAIN;
            }
            break;
        case link::SlotReader::Result::Withheld: {
            // The device is about to put something newer, unless it has died over it.
            pollfd device{_wake.get(), 0, 0};
            if (::poll(&device, 1, 0) > 0) {
                return ECONNRESET;
            }
            (void)::sched_yield(); // cannot fail here
            break;
        }
        }
    }
}

// Caller holds _mutex.
int ObjectDescriptor::deliver(std::span<char> buffer, std::size_t &length)
{
    length = copyWholeLines(_text, buffer);
    if (length == 0) {
        return EINVAL;
    }
    _text = {};
    return 0;
}

ObjectDescriptor::Byte ObjectDescriptor::takeByte()
{
    char byte = 0;
    ssize_t taken = 0;
    do {
        taken = ::read(_wake.get(), &byte, 1);
    } while (taken < 0 && errno == EINTR);
    if (taken == 1) {
        return Byte::Taken;
    }
    return taken < 0 && errno == EAGAIN ? Byte::None : Byte::Ended;
}

int ObjectDescriptor::awaitReadable()
{
    pollfd descriptor{_wake.get(), POLLIN, 0};
    return ::poll(&descriptor, 1, -1) < 0 ? errno : 0;
}

} // namespace kelp::platform
