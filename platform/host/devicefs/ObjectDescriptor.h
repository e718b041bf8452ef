// SPDX-License-Identifier: Apache-2.0
// One open publish/subscribe object of this process. What there is to read lies in a slot that the device fills; the
// descriptor is the reading end of a pipe or of a socket pair with one byte in it while the slot has something, and ends
// when the device does.
#pragma once

#include "platform/host/connection/DeviceConnection.h"
#include "platform/link/Slot.h"
#include "platform/link/UniqueFd.h"

#include <atomic>
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

    // Closes it on the device and hands the descriptor over, to be closed.
    link::UniqueFd end();

private:
    enum class Byte { Taken, None, Ended };

    int tryRead(std::span<char> buffer, std::size_t &length);
    int takeText(Byte &byte);
    int deliver(std::span<char> buffer, std::size_t &length);
    Byte takeByte();
    int awaitReadable();

    link::UniqueFd _wake;
    const Terms _terms;
    std::atomic<int> _flags;
    std::atomic<bool> _isDisowned = false;

    std::mutex _mutex; // guards the rest
    std::optional<link::SlotReader> _slot;
    std::string_view _text; // taken from the slot and not yet handed over
    bool _more = false;     // the device has more behind _text
};

} // namespace kelp::platform
