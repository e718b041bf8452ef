// SPDX-License-Identifier: Apache-2.0
// See ResidentSet.h.

#include "ResidentSet.h"

#include "KernelText.h"

#include <cerrno>
#include <limits>

#include <unistd.h>

namespace kelp::platform {

namespace {

// What the kernel says of a process that ends while it is asked about, and where others' processes are
// hidden.
int asPathError(int error)
{
    switch (error) {
    case ESRCH:
        return ENOENT;
    case EPERM:
        return EACCES;
    default:
        return error;
    }
}

} // namespace

int residentSet(const std::string &folder, std::int64_t &bytes)
{
    std::string text;
    if (const int error = readKernelFile(folder + "/statm", text)) {
        return asPathError(error);
    }
    std::string_view rest = text;
    (void)takeUpTo(rest, ' '); // the address space, used or not
    const auto pages = toNumber(takeUpTo(rest, ' '));
    const std::int64_t pageSize = ::sysconf(_SC_PAGESIZE);
    if (!pages || *pages > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() / pageSize)) {
        return EIO;
    }
    bytes = static_cast<std::int64_t>(*pages) * pageSize;
    return 0;
}

} // namespace kelp::platform
