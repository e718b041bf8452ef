// SPDX-License-Identifier: Apache-2.0
// See RedisServer.h.

#include "RedisServer.h"

namespace kelp::bench {

RedisServer::RedisServer()
    : _process({"redis-server", "server.conf"},
               "port 0\nunixsocket redis.socket\nsave \"\"\nappendonly no\nloglevel warning\n"
               "client-output-buffer-limit pubsub 0 0 0\n",
               "redis.socket")
{}

} // namespace kelp::bench
