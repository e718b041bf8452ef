// SPDX-License-Identifier: Apache-2.0
// A server that the project is compared to: it runs in a temporary directory of its own and ends with its
// owner.
#pragma once

#include "TemporaryDirectory.h"
#include "bench/ChildProcess.h"

#include <string>
#include <vector>

namespace kelp::bench {

class ServerProcess
{
public:
    // Runs a command in the directory, in which "server.conf" has the configuration, and waits until the
    // socket named there accepts connections. Throws std::runtime_error.
    ServerProcess(const std::vector<std::string> &command, const std::string &configuration,
                  const std::string &socket);

    const std::string &socketPath() const { return _socketPath; }
    pid_t pid() const { return _process.pid(); }

private:
    TemporaryDirectory _directory;
    std::string _socketPath;
    ChildProcess _process;
};

} // namespace kelp::bench
