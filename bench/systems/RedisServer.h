// SPDX-License-Identifier: Apache-2.0
// A redis-server on a Unix socket, which keeps nothing on disk.
#pragma once

#include "ServerProcess.h"

namespace kelp::bench {

class RedisServer
{
public:
    RedisServer();
    const std::string &socketPath() const { return _process.socketPath(); }
    pid_t pid() const { return _process.pid(); }

private:
    ServerProcess _process;
};

} // namespace kelp::bench
