// SPDX-License-Identifier: Apache-2.0
// When something happened: one count for the whole store, so that what a reader has seen is one number, and
// an object that came anew under an old path is newer than all that was seen of the old one.
#pragma once

#include <cstdint>

namespace kelp::device {

using Revision = std::uint64_t;

constexpr Revision NEVER = 0; // what a reader has seen that has read nothing yet

} // namespace kelp::device
