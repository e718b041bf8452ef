// SPDX-License-Identifier: Apache-2.0
// See AssetsDirectory.h.

#include "AssetsDirectory.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace fs = std::filesystem;

namespace kelp::platform {

namespace {

// An errno that says no more than that there is no such file.
bool meansMissing(const std::error_code &error)
{
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

// Of two paths without symbolic links, ".." and the like.
bool isBelow(const fs::path &path, const fs::path &directory)
{
    return std::mismatch(directory.begin(), directory.end(), path.begin(), path.end()).first ==
           directory.end();
}

} // namespace

int AssetsDirectory::find(const fs::path &asset, const std::vector<fs::path> &directories,
                          std::string &found) const
{
    // By the text alone, and before a variant's directory is put in front: its parent is in here as well.
    const fs::path relative = asset.lexically_normal();
    if (relative.is_absolute() || (!relative.empty() && *relative.begin() == "..")) {
        return EACCES;
    }
    for (const fs::path &directory : directories) {
        const fs::path file = _path / directory / relative;
        bool exists = false;
        const int error = check(file, exists);
        if (error || exists) {
            found = exists ? file.string() : std::string();
            return error;
        }
    }
    return 0;
}

// Whether a path is that of a regular file. Returns 0, or an errno: EACCES for one elsewhere.
int AssetsDirectory::check(const fs::path &file, bool &exists) const
{
    std::error_code error;
    const fs::path target = fs::canonical(file, error);
    if (error) {
        return meansMissing(error) ? 0 : error.value();
    }
    if (!isBelow(target, fs::canonical(_path))) {
        return EACCES;
    }
    exists = fs::is_regular_file(target);
    return 0;
}

} // namespace kelp::platform
