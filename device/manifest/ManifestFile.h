// SPDX-License-Identifier: Apache-2.0
// Finds the manifest of a process where its package has been unpacked: in its working directory. The Device asks when
// a process becomes an application.
#pragma once

#include "Manifest.h"

#include <sys/types.h>

namespace kelp::device {

struct ManifestReading {
    std::optional<Manifest> manifest;
    std::string problem; // why it is not used; empty: it is, or there is none
};

// Reads "app/META-INF/MANIFEST.MF" below the process's working directory, at most 1 MiB. So that nobody waits, whatever the
// process has put there, the file is not looked for where the directory lies on a network's or a program's file system, or
// on a mount that only the process sees, and not followed to anything but a regular file below the directory. That is a problem, as is a file that may not be read.
// A process that is gone or cannot be seen from here, or pid 0, has none.
ManifestReading readManifest(pid_t pid);

} // namespace kelp::device
