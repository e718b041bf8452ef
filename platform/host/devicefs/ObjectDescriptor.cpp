// SPDX-License-Identifier: Apache-2.0
// See ObjectDescriptor.h.

#include "ObjectDescriptor.h"

#include "WholeObjects.h"

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
    std::unique_lock lock(_mutex);
    ++_readers;
    const int error = readOrWait(lock, buffer, length);
    if (--_readers == 0) {
        _allLeft.notify_all();
    }
    return error;
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
    if (_isDisowned) {
        return std::move(_wake);
    }
    _isEnded = true;
    DeviceConnection::Answer none;
    const link::DescriptorCall close{link::DescriptorCall::Kind::Close, _terms.number};
    // A device that has gone has closed it. The other end's hang-up wakes whoever waits.
    (void)DeviceConnection::instance().ask(close, none, {}, _terms.generation);
    std::unique_lock lock(_mutex);
    _allLeft.wait(lock, [this] { return _readers == 0; });
    return std::move(_wake);
}

int ObjectDescriptor::readOrWait(std::unique_lock<std::mutex> &lock, std::span<char> buffer,
                                 std::size_t &length)
{
    while (!_isEnded) {
        const int error = readOnce(buffer, length);
        if (error != EAGAIN || _isEnded) {
            return _isEnded ? EBADF : error;
        }
        if (!_terms.waits) {
            length = 0;
            return 0;
        }
        if (_flags & O_NONBLOCK) {
            return EAGAIN;
        }
        lock.unlock();
        const int interrupted = awaitReadable();
        lock.lock();
        if (interrupted) {
            return interrupted;
        }
    }
    return EBADF;
}

// EAGAIN where there is nothing to read. Caller holds _mutex, here and below.
int ObjectDescriptor::readOnce(std::span<char> buffer, std::size_t &length)
{
    if (_text.empty()) {
        if (const int error = takeText()) {
            return error;
        }
    }
    length = takeWholeObjects(_text, buffer);
    if (length == 0) {
        return EINVAL;
    }
    return _text.empty() ? finishText() : 0;
}

// Takes a text that is not empty: in the place of one that nobody has read, the device can put that there is none.
int ObjectDescriptor::takeText()
{
    for (;;) {
        int error = 0;
        switch (_slot->take(_text, _more)) {
        case link::SlotReader::Result::Taken:
            error = _text.empty() ? finishText() : 0;
            if (error || !_text.empty()) {
                return error;
            }
            break;
        case link::SlotReader::Result::Nothing:
            error = takeTextByByte();
            break;
        case link::SlotReader::Result::Withheld:
            error = awaitReplacement();
            break;
        case link::SlotReader::Result::Stale:
            error = askForRefill();
            break;
        }
        if (error) {
            return error;
        }
    }
}

// Nothing lies there: perhaps it has come since, perhaps the device has gone. The byte comes after the text.
int ObjectDescriptor::takeTextByByte()
{
    if (_hasByte) {
        return ECONNRESET; // a byte without a text
    }
    switch (takeByte()) {
    case Byte::Taken:
        _hasByte = true;
        return 0;
    case Byte::None:
        return EAGAIN;
    case Byte::Ended:
        break;
    }
    return ECONNRESET;
}

// The device is about to put something newer, unless it has died over it.
int ObjectDescriptor::awaitReplacement()
{
    pollfd device{_wake.get(), 0, 0};
    if (::poll(&device, 1, 0) > 0) {
        return ECONNRESET;
    }
    (void)::sched_yield(); // cannot fail here
    return 0;
}

// The text is the reader's: takes its byte, which the device writes after it has put the text, and has the next one put
// if there is more, so that the descriptor is readable when the read returns.
int ObjectDescriptor::finishText()
{
    while (!_hasByte) {
        const Byte byte = takeByte();
        if (byte == Byte::None) {
            (void)awaitReadable(); // interrupted or not: the byte is on its way
        }
        _hasByte = byte != Byte::None;
    }
    _hasByte = false;
    if (_more) {
        (void)askForRefill(); // that the device has gone shows at the next read
    }
    return 0;
}

int ObjectDescriptor::askForRefill()
{
    DeviceConnection::Answer none;
    const link::DescriptorCall refill{link::DescriptorCall::Kind::Refill, _terms.number};
    return DeviceConnection::instance().ask(refill, none, {}, _terms.generation) == 0 ? 0 : ECONNRESET;
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

// Looks up now and then, for a device that hangs does not hang up.
int ObjectDescriptor::awaitReadable()
{
    constexpr int LOOK_UP_MS = 1000;
    pollfd descriptor{_wake.get(), POLLIN, 0};
    int ready = 0;
    while (ready == 0 && !_isEnded) {
        ready = ::poll(&descriptor, 1, LOOK_UP_MS);
    }
    return ready < 0 ? errno : 0;
}

} // namespace kelp::platform
