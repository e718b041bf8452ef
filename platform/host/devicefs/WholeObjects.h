// SPDX-License-Identifier: Apache-2.0
// What a reader with a small buffer gets of a text.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace kelp::platform {

// Moves the beginning of a text into a buffer: as many whole objects as fit; or, where not even the first one does, as many
// of its lines as fit, with the incomplete flag at its name, and its other lines are gone. Takes what it has moved or
// dropped off the text and returns the bytes in the buffer; 0, with the text as it was, where not even the name line fits.
std::size_t takeWholeObjects(std::string_view &text, std::span<char> buffer);

} // namespace kelp::platform
