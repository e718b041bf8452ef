// SPDX-License-Identifier: Apache-2.0
// Finds the manifest of a process where its package has been unpacked: in its working directory. The Device asks when
// a process becomes an application.
#pragma once

#include "Manifest.h"

#include <sys/types.h>

namespace kelp::device {

struct ManifestReading {
    std::optional<Manifest> manifest;
    std::string
        problem; // what is wrong with the file that is there; empty: nothing, or there is none to be reached
};

// Reads "app/META-INF/MANIFEST.MF" below the process's working directory, at most 1 MiB. Nobody waits, whatever the
// process has put there. A process that cannot be seen from here, pid 0, has none.
ManifestReading readManifest(pid_t pid);

} // namespace kelp::device
