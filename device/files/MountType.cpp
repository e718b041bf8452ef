// SPDX-License-Identifier: Apache-2.0
// See MountType.h.

#include "MountType.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace kelp::device {

namespace {

// Also with a dot and a name behind it. "fuseblk" is not among them: it lies on a local disk.
constexpr std::string_view MAY_NOT_ANSWER[] = {
    "9p",     "afs",  "autofs",    "beegfs", "ceph",     "cifs",   "coda",  "davfs",
    "fuse",   "gfs2", "glusterfs", "lustre", "nfs",      "nfs4",   "ocfs2", "orangefs",
    "prl_fs", "smb3", "smbfs",     "vboxsf", "virtiofs", "vmhgfs",
};

// The number of the mount on which the descriptor lies; empty: it cannot be told.
std::string mountId(int descriptor)
{
    std::ifstream facts("/proc/self/fdinfo/" + std::to_string(descriptor));
    std::string name;
    std::string value;
    while (facts >> name >> value) {
        if (name == "mnt_id:") {
            return value;
        }
    }
    return {};
}

// A line: "36 35 98:0 /root /mount rw,noatime master:1 - ext4 /dev/root rw". Blanks in paths are escaped.
std::string typeOf(const std::string &id)
{
    std::ifstream lines("/proc/self/mountinfo");
    for (std::string line; std::getline(lines, line);) {
        const std::size_t mark = line.find(" - ");
        if (line.starts_with(id + ' ') && mark != std::string::npos) {
            std::string type;
            std::istringstream(line.substr(mark + 3)) >> type;
            return type;
        }
    }
    return {};
}

} // namespace

std::string mountType(int descriptor)
{
    const std::string id = mountId(descriptor);
    return id.empty() ? id : typeOf(id);
}

bool mayNotAnswer(std::string_view type)
{
    const std::string_view family = type.substr(0, type.find('.'));
    return std::find(std::begin(MAY_NOT_ANSWER), std::end(MAY_NOT_ANSWER), family) !=
           std::end(MAY_NOT_ANSWER);
}

} // namespace kelp::device
