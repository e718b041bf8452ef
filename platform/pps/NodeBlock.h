// SPDX-License-Identifier: Apache-2.0
// The memory of one decoded tree. Each thread keeps one block of a moderate size for its next text, because asking for
// more than about a kilobyte makes the allocator tidy up its small pieces first, which costs more than decoding.
#pragma once

#include <cstddef>

namespace kelp::pps {

// At least that many bytes, aligned for anything; or null, with errno as it was.
std::byte *takeBlock(std::size_t size);

// Gives back what takeBlock() gave; null is fine.
void giveBlock(std::byte *block);

} // namespace kelp::pps
