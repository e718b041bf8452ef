// SPDX-License-Identifier: Apache-2.0
// The terminal on standard input, which the device can lend to a child so that the keyboard, Ctrl-C included, is the
// child's. ChildProcesses owns one.
#pragma once

#include <sys/types.h>

namespace kelp::device {

class Terminal
{
public:
    // Whether standard input is a terminal.
    static bool isThere();

    // Whether this process is the one that the terminal's keyboard belongs to, so that it may lend it.
    static bool isOurs();

    // Makes a process group the terminal's foreground; of no effect where that fails, for then it is not ours to give.
    static void giveTo(pid_t group);
    static void takeBack();
};

} // namespace kelp::device
