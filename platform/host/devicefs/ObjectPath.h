// SPDX-License-Identifier: Apache-2.0
// Tells the paths of publish/subscribe objects from those of the host's files.
#pragma once

#include <optional>
#include <string_view>

namespace kelp::platform {

// What follows "/pps" in a path to an object or a directory of objects; nothing for any other path.
inline std::optional<std::string_view> objectPath(std::string_view path)
{
    constexpr std::string_view ROOT = "/pps";
    if (!path.starts_with(ROOT)) {
        return std::nullopt;
    }
    const std::string_view rest = path.substr(ROOT.size());
    if (!rest.empty() && rest.front() != '/') {
        return std::nullopt;
    }
    return rest.empty() ? "/" : rest;
}

} // namespace kelp::platform
