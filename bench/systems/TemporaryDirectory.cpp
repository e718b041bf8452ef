// SPDX-License-Identifier: Apache-2.0
// See TemporaryDirectory.h.

#include "TemporaryDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace kelp::bench {

TemporaryDirectory::TemporaryDirectory() : _path(std::filesystem::temp_directory_path() / "bench-XXXXXX")
{
    if (!::mkdtemp(_path.data())) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + _path);
    }
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored; // what cannot be removed harms nobody
    std::filesystem::remove_all(_path, ignored);
}

} // namespace kelp::bench
