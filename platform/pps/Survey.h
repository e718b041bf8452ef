// SPDX-License-Identifier: Apache-2.0
// The first look at a text, before it is decoded: how many nodes it can make at most, and whether it is
// ASCII.
#pragma once

#include <cstddef>
#include <string_view>

namespace kelp::pps {

struct Survey {
    std::size_t nodes =
        0; // the root, and one for each line and each ',', '[' and '{', which stand before every value
    bool isAscii = true;
};

Survey survey(std::string_view text);

} // namespace kelp::pps
