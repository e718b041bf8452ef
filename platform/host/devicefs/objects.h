// SPDX-License-Identifier: Apache-2.0
// What devicefs asks of the device for paths below "/pps". Each returns 0 or an errno, as devicefs.h documents it.
#pragma once

#include "platform/link/Message.h"

#include <cstdint>
#include <string_view>

#include <sys/types.h>

namespace kelp::platform {

// Opens an object, puts it into the DescriptorTable and sets fd. flags and mode as for open(2).
int openObject(std::string_view path, int flags, mode_t mode, int &fd);

// Unlinks, or asks for access; with Size, size is set.
int callOnPath(link::PathCall::Kind kind, std::string_view path, int mode, std::int64_t *size = nullptr);

} // namespace kelp::platform
