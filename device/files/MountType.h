// SPDX-License-Identifier: Apache-2.0
// Tells which file system a descriptor lies on without asking that file system, which may never answer: it is the
// kernel's own list of mounts that is read. RegularFile asks before it looks any further.
#pragma once

#include <string>
#include <string_view>

namespace kelp::device {

// As /proc/filesystems names it, such as "ext4" or "fuse.sshfs"; empty: the mount is in the list of neither this process
// nor processId, as one that has been detached.
std::string mountType(int descriptor, int processId);

// Behind that type stands a program or another machine, which may leave whoever asks waiting without an end.
bool mayNotAnswer(std::string_view type);

} // namespace kelp::device
