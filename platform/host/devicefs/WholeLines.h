// SPDX-License-Identifier: Apache-2.0
// What a reader with a small buffer gets of a text.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace kelp::platform {

// Copies a text into a buffer: all of it, or else as many whole lines as fit, with the incomplete flag at the name of the
// last object among them. Returns the bytes copied; 0 where not even the first line fits.
std::size_t copyWholeLines(std::string_view text, std::span<char> buffer);

} // namespace kelp::platform
