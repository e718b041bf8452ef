// SPDX-License-Identifier: Apache-2.0
// See PathArgument.h.

#include "PathArgument.h"

#include "Failure.h"

namespace kelp::tool {

namespace {

constexpr char ROOT[] = "/pps";

} // namespace

std::string objectPath(const std::string &given)
{
    if (given.find('?') != std::string::npos) {
        throw Failure(EXIT_USAGE, "options are not for the command line: leave the ? and what follows out");
    }
    const bool isBelow = given == ROOT || given.starts_with(std::string(ROOT) + '/');
    std::string path = isBelow ? given.substr(sizeof ROOT - 1) : given;
    while (path.ends_with('/')) {
        path.pop_back();
    }
    return path.starts_with('/') ? path : '/' + path;
}

} // namespace kelp::tool
