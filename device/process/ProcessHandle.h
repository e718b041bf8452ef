// SPDX-License-Identifier: Apache-2.0
// A process that has connected to the device, held so that its number cannot come to mean another process: a signal
// reaches it or nobody, and its end is noticed whoever else keeps its socket open. The socket door owns one for each
// connection of an application.
#pragma once

#include "platform/link/UniqueFd.h"

#include <string>

#include <sys/types.h>

namespace kelp::device {

class ProcessHandle
{
public:
    ProcessHandle() = default; // no process

    // Sets handle to the process that connected the other end of a Unix socket. Returns 0, or an errno: ESRCH when
    // it has ended, EMFILE, ENFILE or ENOMEM when there is no room for its descriptor.
    static int ofPeer(int socket, ProcessHandle &handle);

    pid_t pid() const { return _pid; } // 0: a process of a PID namespace that cannot be seen from here

    // Readable once the process has ended; -1 where the system offers no such descriptor.
    int descriptor() const { return _descriptor.get(); }

    // The base name of the program that the process runs; "application" where that cannot be told.
    std::string programName() const;

    // Sends a signal. Returns 0, or an errno: ESRCH when the process has ended, when it cannot be seen from here, or
    // when it is this very process, which never signals itself this way.
    int signal(int number) const;

private:
    pid_t _pid = 0;
    link::UniqueFd _descriptor;
};

} // namespace kelp::device
