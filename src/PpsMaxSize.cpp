// SPDX-License-Identifier: Apache-2.0
// See PpsMaxSize.h.

#include "PpsMaxSize.h"

#include <devicefs/devicefs.h>

#include <climits>

#include <fcntl.h>

namespace kelp {

int PPS_MAX_SIZE = askPpsMaxSize();

int askPpsMaxSize()
{
    const int fd = devicefs_open("/pps/.all", O_RDONLY, 0);
    const long size = fd == -1 ? -1 : devicefs_fpathconf(fd, DEVICEFS_PC_OBJECT_MAX);
    (void)devicefs_close(fd); // also without one, deliberately; there is nothing to be done about a failure
    return size > 0 && size <= INT_MAX ? static_cast<int>(size) : 32768;
}

} // namespace kelp
