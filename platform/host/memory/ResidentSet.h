// SPDX-License-Identifier: Apache-2.0
// How much of the physical memory a process uses, for devicefs.
#pragma once

#include <cstdint>
#include <string>

namespace kelp::platform {

// Sets bytes to the resident set of the process whose folder of /proc is given. Returns 0 or an errno: ENOENT
// for a process that does not exist, EACCES for one whose figures are kept from the caller, EIO for a figure
// that is no number.
int residentSet(const std::string &folder, std::int64_t &bytes);

} // namespace kelp::platform
