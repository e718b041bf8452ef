// SPDX-License-Identifier: Apache-2.0
// Where the file system shows the control groups of a hierarchy that can limit memory, for
// ControlGroupFolders.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelp::platform {

enum class ControlGroupVersion { V1, V2 };

struct ControlGroupMount {
    ControlGroupVersion version;
    std::string
        root; // the group that the mount shows as its top, as the process's control group namespace names it
    std::string point; // the folder of that group

    // Of a line of /proc/self/mountinfo; nothing for a line that is about something else, or malformed.
    static std::optional<ControlGroupMount> parse(std::string_view line);
};

} // namespace kelp::platform
