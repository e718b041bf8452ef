// SPDX-License-Identifier: Apache-2.0
// An application's assets directory, in which the selector looks for files and out of which no path may lead.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kelp::platform {

class AssetsDirectory
{
public:
    explicit AssetsDirectory(std::filesystem::path path) : _path(std::move(path)) {}

    // Sets found to the path of the first directory's file for an asset, or to an empty one where none has it.
    // Returns 0, or an errno: EACCES for an asset, or a file of it, that is not in here.
    int find(const std::filesystem::path &asset, const std::vector<std::filesystem::path> &directories,
             std::string &found) const;

private:
    int check(const std::filesystem::path &file, bool &exists) const;

    std::filesystem::path _path;
};

} // namespace kelp::platform
