// SPDX-License-Identifier: Apache-2.0
// Where the device lives, as the command line and the environment say.
#pragma once

#include <string>

namespace kelp::tool {

// The absolute directory of the device to start or to talk to: the option's value if there is one, else KELP_DEVICE,
// else "kelp-device" in XDG_RUNTIME_DIR, else a directory of the user's in /tmp.
std::string deviceDirectory(const std::string &option);

// The directory in which private devices are made: XDG_RUNTIME_DIR if it can be written to, else /tmp.
std::string privateParent();

// A path from the root, without slashes at its end.
std::string absolutePath(const std::string &path);

// A word that a shell reads as this text.
std::string shellQuoted(const std::string &text);

} // namespace kelp::tool
