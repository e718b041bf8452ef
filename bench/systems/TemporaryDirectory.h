// SPDX-License-Identifier: Apache-2.0
// A new directory for the sockets and files of a server, removed with its owner.
#pragma once

#include <string>

namespace kelp::bench {

class TemporaryDirectory
{
public:
    TemporaryDirectory(); // throws std::system_error
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    const std::string &path() const { return _path; }
    std::string path(const std::string &name) const { return _path + '/' + name; }

private:
    std::string _path;
};

} // namespace kelp::bench
