// SPDX-License-Identifier: Apache-2.0
// Signals of the process as something to read, in the order in which they came. The event loop owns one, and there is
// one at a time in a process. No signal is blocked for it, so that children inherit nothing they would have to undo.
#pragma once

#include "platform/link/UniqueFd.h"

#include <csignal>
#include <utility>
#include <vector>

namespace kelp::device {

class SignalPipe
{
public:
    // Takes these signals, and unblocks them in the calling thread. Throws std::system_error; EBUSY while there is
    // another SignalPipe.
    explicit SignalPipe(const std::vector<int> &signals);
    // Gives each signal back to whom it was taken from.
    ~SignalPipe();
    SignalPipe(const SignalPipe &) = delete;
    SignalPipe &operator=(const SignalPipe &) = delete;

    // Readable while next() has a signal to return.
    int descriptor() const { return _reading.get(); }
    // The number of the next signal that came, 0 when none has.
    int next();

private:
    void take(const std::vector<int> &signals);
    void giveBack();

    link::UniqueFd _reading;
    link::UniqueFd _writing;
    std::vector<std::pair<int, struct sigaction>> _before; // by number
};

} // namespace kelp::device
