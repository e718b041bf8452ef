// SPDX-License-Identifier: Apache-2.0
// A client's connection to a redis-server, through hiredis.
#pragma once

#include "Update.h"

#include <hiredis/hiredis.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace kelp::bench {

class RedisConnection
{
public:
    struct ReplyDeleter {
        void operator()(redisReply *reply) const { freeReplyObject(reply); }
    };
    using Reply = std::unique_ptr<redisReply, ReplyDeleter>;

    // Throws std::runtime_error, as all here.
    explicit RedisConnection(const std::string &socketPath);

    int descriptor() const { return _context->fd; }

    // Commands wait to be sent by flush(), or by reply().
    void append(std::initializer_list<std::string_view> command);
    void appendHashSet(const std::string &key, const Update &update); // HSET
    void flush();

    // Waits for the next reply.
    Reply reply();

    // Reads what has come; without waiting where the descriptor is readable. Then takeReply() gives one after
    // the other, and null after the last.
    void readReplies();
    Reply takeReply();

private:
    struct Closer {
        void operator()(redisContext *context) const { redisFree(context); }
    };

    void append(std::span<const std::string_view> command);
    void check(bool isGood) const;

    std::unique_ptr<redisContext, Closer> _context;
};

} // namespace kelp::bench
