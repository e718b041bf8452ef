// SPDX-License-Identifier: Apache-2.0
// See Terminal.h.

#include "Terminal.h"

#include <csignal>
#include <unistd.h>

namespace kelp::device {

bool Terminal::isThere()
{
    return ::isatty(STDIN_FILENO) == 1;
}

bool Terminal::isOurs()
{
    return ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
}

void Terminal::giveTo(pid_t group)
{
    // Out of the foreground, the change itself would stop this process.
    sigset_t stop;
    sigset_t before;
    ::sigemptyset(&stop);
    ::sigaddset(&stop, SIGTTOU);
    ::pthread_sigmask(SIG_BLOCK, &stop, &before);
    (void)::tcsetpgrp(STDIN_FILENO, group); // see the header
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void Terminal::takeBack()
{
    giveTo(::getpgrp());
}

} // namespace kelp::device
