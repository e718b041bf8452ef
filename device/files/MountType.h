// SPDX-License-Identifier: Apache-2.0
// Tells which file system a descriptor lies on without asking that file system, which may never answer: it is the
// kernel's own list of mounts that is read. RegularFile asks before it looks any further.
#pragma once

#include <string>
#include <string_view>

namespace kelp::device {

// As /proc/filesystems names it, such as "ext4" or "fuse.sshfs"; empty: the mount is not in this process's list. It has
// been detached, or belongs to a mount namespace that another process has made, and is then not to be relied on: an
// overlay there can have anything below it.
std::string mountType(int descriptor);

// Behind that type stands a program or another machine, which may leave whoever asks waiting without an end. An overlay is
// not among them, whatever the one who made it here has put below it.
bool mayNotAnswer(std::string_view type);

} // namespace kelp::device
