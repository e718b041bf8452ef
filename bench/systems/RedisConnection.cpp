// SPDX-License-Identifier: Apache-2.0
// See RedisConnection.h.

#include "RedisConnection.h"

#include <array>
#include <stdexcept>

namespace kelp::bench {

RedisConnection::RedisConnection(const std::string &socketPath)
    : _context(redisConnectUnix(socketPath.c_str()))
{
    check(_context && !_context->err);
}

void RedisConnection::append(std::initializer_list<std::string_view> command)
{
    append(std::span(command.begin(), command.size()));
}

void RedisConnection::appendHashSet(const std::string &key, const Update &update)
{
    std::array<std::string_view, 18> command{"HSET", key};
    std::size_t next = 2;
    for (const auto &[name, value] : update.fields()) {
        command[next++] = name;
        command[next++] = value;
    }
    append(command);
}

void RedisConnection::append(std::span<const std::string_view> command)
{
    std::array<const char *, 18> texts;
    std::array<std::size_t, 18> sizes;
    for (std::size_t i = 0; i < command.size(); ++i) {
        texts[i] = command[i].data();
        sizes[i] = command[i].size();
    }
    check(redisAppendCommandArgv(_context.get(), static_cast<int>(command.size()), texts.data(),
                                 sizes.data()) == REDIS_OK);
}

void RedisConnection::flush()
{
    for (int done = 0; !done;) {
        check(redisBufferWrite(_context.get(), &done) == REDIS_OK);
    }
}

RedisConnection::Reply RedisConnection::reply()
{
    void *taken = nullptr;
    check(redisGetReply(_context.get(), &taken) == REDIS_OK);
    Reply reply(static_cast<redisReply *>(taken));
    if (reply->type == REDIS_REPLY_ERROR) {
        throw std::runtime_error("redis-server: " + std::string(reply->str, reply->len));
    }
    return reply;
}

void RedisConnection::readReplies()
{
    check(redisBufferRead(_context.get()) == REDIS_OK);
}

RedisConnection::Reply RedisConnection::takeReply()
{
    void *taken = nullptr;
    check(redisGetReplyFromReader(_context.get(), &taken) == REDIS_OK);
    return Reply(static_cast<redisReply *>(taken));
}

void RedisConnection::check(bool isGood) const
{
    if (!isGood) {
        throw std::runtime_error(std::string("redis: ") + (_context ? _context->errstr : "no memory"));
    }
}

} // namespace kelp::bench
