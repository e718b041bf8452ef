// SPDX-License-Identifier: Apache-2.0
// See WakePair.h.

#include "WakePair.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kelp::device {

int makeWakePair(bool clientWrites, WakePair &pair)
{
    int ends[2]; // the client's first
    if (clientWrites) {
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0) {
            return errno;
        }
    } else if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return errno;
    } else {
        // The system counts the room of all pipes of a user; where it does not shrink, it is only larger.
        (void)::fcntl(ends[0], F_SETPIPE_SZ, 4096);
    }
    pair.client.reset(ends[0]);
    pair.device.reset(ends[1]);
    return 0;
}

void wake(const link::UniqueFd &end)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(end.get(), &byte, 1); // see the header
}

} // namespace kelp::device
