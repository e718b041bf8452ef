// SPDX-License-Identifier: Apache-2.0
// Whether a directory is fit to be a device's: one question, asked by the device before it moves in and by the
// command line before it trusts what lies there.
#pragma once

#include "platform/link/UniqueFd.h"

#include <string>

namespace kelp::device {

struct DirectoryCheck {
    // Opens a directory, which must be a real one, of this user, closed to all others, with a path that leaves room
    // for the socket's name.
    explicit DirectoryCheck(const std::string &path);

    link::UniqueFd directory; // an O_PATH descriptor; none when it is missing or refused
    bool isMissing = false;
    std::string
        refusal; // a sentence that says what is wrong and what to do; empty when it is fit, or missing
};

} // namespace kelp::device
