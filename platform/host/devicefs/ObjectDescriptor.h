// SPDX-License-Identifier: Apache-2.0
// One open publish/subscribe object of this process. What there is to read lies in a slot that the device fills; the
// descriptor is the reading end of a pipe or of a socket pair with one byte in it while the slot has something, and hangs
// up when the device does, or when the object is closed there.
#pragma once

#include "platform/host/connection/DeviceConnection.h"
#include "platform/link/Slot.h"
#include "platform/link/UniqueFd.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>

#include <fcntl.h>

namespace kelp::platform {

class ObjectDescriptor
{
public:
    // What the device has said of it.
    struct Terms {
        DeviceConnection::Generation generation = DeviceConnection::ANY;
        std::uint32_t number = 0; // the device's
        long objectMax = 0;       // bytes
        bool waits = false;       // the option "wait"
    };

    // flags as for open(2).
    ObjectDescriptor(link::UniqueFd wake, const Terms &terms, int flags,
                     std::optional<link::SlotReader> slot);

    // Each returns 0 or an errno, as devicefs.h documents it.
    int read(std::span<char> buffer, std::size_t &length);
    int write(std::string_view text);

    int flags() const { return _flags; }
    void setFlags(int flags); // only O_NONBLOCK can change
    long objectMax() const { return _terms.objectMax; }

    // In the child of a fork(): from now on nothing works but end().
    void disown() { _isDisowned = true; }

    // Closes it on the device, waits until no thread reads any more, and hands the descriptor over, to be closed.
    link::UniqueFd end();

private:
    enum class Byte { Taken, None, Ended };

    int readOrWait(std::unique_lock<std::mutex> &lock, std::span<char> buffer, std::size_t &length);
    int readOnce(std::span<char> buffer, std::size_t &length);
    int takeText();
    int takeTextByByte();
    int awaitReplacement();
    int finishText();
    int askForRefill();
    Byte takeByte();
    int awaitReadable();

    link::UniqueFd _wake; // does not change while somebody reads
    const Terms _terms;
    std::atomic<int> _flags;
    std::atomic<bool> _isDisowned = false;
    std::atomic<bool> _isEnded = false;

    std::mutex _mutex;                // guards the rest
    std::condition_variable _allLeft; // _readers has become 0
    int _readers = 0;                 // threads in read()
    std::optional<link::SlotReader> _slot;
    std::string_view _text; // taken from the slot and not yet handed over
    bool _more = false;     // the device has more behind _text
    bool _hasByte = false;  // the byte of _text, or of the text to take next, has been taken
};

} // namespace kelp::platform
