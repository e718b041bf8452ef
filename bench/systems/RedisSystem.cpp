// SPDX-License-Identifier: Apache-2.0
// See System.h. Publishers do not wait for replies: they take them, many at a time, once enough have come.

#include "RedisConnection.h"
#include "RedisServer.h"
#include "System.h"

namespace kelp::bench {

namespace {

constexpr int MAX_UNREAD_REPLIES = 128;

class RedisPublisher : public Publisher
{
public:
    RedisPublisher(const std::string &socketPath, const std::string &topic, bool stores)
        : _connection(socketPath),
          _topic(topic),
          _stores(stores)
    {}

    void publish(const Update &update) override
    {
        if (_stores) {
            _connection.appendHashSet("object:" + _topic, update);
            _connection.append({"PUBLISH", _topic, "1"});
        } else {
            _connection.append({"PUBLISH", _topic, update.text()});
        }
        _connection.flush();
        for (_unread += _stores ? 2 : 1; _unread > MAX_UNREAD_REPLIES; --_unread) {
            (void)_connection.reply(); // how many have got it
        }
    }

private:
    RedisConnection _connection;
    std::string _topic;
    bool _stores;
    int _unread = 0;
};

class ChannelSubscriber : public Subscriber
{
public:
    ChannelSubscriber(const std::string &socketPath, const std::string &topic) : _connection(socketPath)
    {
        _connection.append({"SUBSCRIBE", topic});
        (void)_connection.reply(); // done
    }

    int descriptor() const override { return _connection.descriptor(); }

    void take(const Sink &sink) override
    {
        _connection.readReplies();
        while (const RedisConnection::Reply reply = _connection.takeReply()) {
            const redisReply &message = *reply->element[2];
            sink(Update::read({message.str, message.len}));
        }
    }

private:
    RedisConnection _connection;
};

class HashSubscriber : public Subscriber
{
public:
    HashSubscriber(const std::string &socketPath, const std::string &topic)
        : _news(socketPath, topic),
          _store(socketPath),
          _key("object:" + topic)
    {}

    int descriptor() const override { return _news.descriptor(); }

    void take(const Sink &sink) override
    {
        _news.take([](const Stamp &) {}); // what has come together is asked for once
        _store.append({"HGETALL", _key});
        const RedisConnection::Reply hash = _store.reply();
        Stamp stamp;
        for (std::size_t i = 0; i + 1 < hash->elements; i += 2) {
            const std::string_view name(hash->element[i]->str, hash->element[i]->len);
            const std::string_view value(hash->element[i + 1]->str, hash->element[i + 1]->len);
            if (name == "seq") {
                stamp.sequence = Update::number(value);
            } else if (name == "sent") {
                stamp.sent = static_cast<std::int64_t>(Update::number(value));
            }
        }
        sink(stamp);
    }

private:
    ChannelSubscriber _news;
    RedisConnection _store;
    std::string _key;
};

class RedisSystem : public System
{
public:
    explicit RedisSystem(bool stores) : _stores(stores) {}

    std::unique_ptr<Publisher> publisher(const std::string &topic) override
    {
        return std::make_unique<RedisPublisher>(_server.socketPath(), topic, _stores);
    }

    std::unique_ptr<Subscriber> subscriber(const std::string &topic) override
    {
        if (_stores) {
            return std::make_unique<HashSubscriber>(_server.socketPath(), topic);
        }
        return std::make_unique<ChannelSubscriber>(_server.socketPath(), topic);
    }

private:
    RedisServer _server;
    bool _stores;
};

} // namespace

std::unique_ptr<System> makeRedisChannels()
{
    return std::make_unique<RedisSystem>(false);
}

std::unique_ptr<System> makeRedisHashes()
{
    return std::make_unique<RedisSystem>(true);
}

} // namespace kelp::bench
