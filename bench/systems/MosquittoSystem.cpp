// SPDX-License-Identifier: Apache-2.0
// See System.h.

#include "ServerProcess.h"
#include "System.h"

#include <mosquitto.h>

#include <stdexcept>

namespace kelp::bench {

namespace {

void check(int result)
{
    if (result != MOSQ_ERR_SUCCESS) {
        throw std::runtime_error(std::string("mosquitto: ") + mosquitto_strerror(result));
    }
}

class Client
{
public:
    explicit Client(const std::string &socketPath) : _client(mosquitto_new(nullptr, true, this))
    {
        mosquitto_connect_callback_set(_client.get(),
                                       [](mosquitto *, void *self, int) { acknowledge(self); });
        mosquitto_subscribe_callback_set(
            _client.get(), [](mosquitto *, void *self, int, int, const int *) { acknowledge(self); });
        mosquitto_message_callback_set(_client.get(),
                                       [](mosquitto *, void *self, const mosquitto_message *message) {
                                           static_cast<Client *>(self)->handleMessage(*message);
                                       });
        check(mosquitto_connect(_client.get(), socketPath.c_str(), 0, 600)); // port 0: a Unix socket
        awaitAcknowledgement();
    }

    int descriptor() const { return mosquitto_socket(_client.get()); }

    void subscribe(const std::string &topic)
    {
        check(mosquitto_subscribe(_client.get(), nullptr, topic.c_str(), 0));
        awaitAcknowledgement();
    }

    void publish(const std::string &topic, const std::string &text)
    {
        check(mosquitto_publish(_client.get(), nullptr, topic.c_str(), static_cast<int>(text.size()),
                                text.data(), 0, false));
        while (mosquitto_want_write(_client.get())) { // the socket was full
            check(mosquitto_loop(_client.get(), 100, 1));
        }
    }

    void take(const Sink &sink)
    {
        _sink = &sink;
        check(mosquitto_loop_read(_client.get(), 1));
        _sink = nullptr;
    }

private:
    struct Closer {
        void operator()(mosquitto *client) const { mosquitto_destroy(client); }
    };

    static void acknowledge(void *self) { static_cast<Client *>(self)->_isAcknowledged = true; }

    void handleMessage(const mosquitto_message &message) const
    {
        if (_sink) {
            (*_sink)(Update::read(
                {static_cast<const char *>(message.payload), static_cast<std::size_t>(message.payloadlen)}));
        }
    }

    void awaitAcknowledgement()
    {
        for (_isAcknowledged = false; !_isAcknowledged;) {
            check(mosquitto_loop(_client.get(), 10000, 1));
        }
    }

    std::unique_ptr<mosquitto, Closer> _client;
    bool _isAcknowledged = false;
    const Sink *_sink = nullptr; // while messages are taken
};

class TopicPublisher : public Publisher
{
public:
    TopicPublisher(const std::string &socketPath, std::string topic)
        : _client(socketPath),
          _topic(std::move(topic))
    {}
    void publish(const Update &update) override { _client.publish(_topic, update.text()); }

private:
    Client _client;
    std::string _topic;
};

class TopicSubscriber : public Subscriber
{
public:
    TopicSubscriber(const std::string &socketPath, const std::string &topic) : _client(socketPath)
    {
        _client.subscribe(topic);
    }
    int descriptor() const override { return _client.descriptor(); }
    void take(const Sink &sink) override { _client.take(sink); }

private:
    Client _client;
};

class MosquittoSystem : public System
{
public:
    MosquittoSystem() { check(mosquitto_lib_init()); }

    std::unique_ptr<Publisher> publisher(const std::string &topic) override
    {
        return std::make_unique<TopicPublisher>(_server.socketPath(), topic);
    }

    std::unique_ptr<Subscriber> subscriber(const std::string &topic) override
    {
        return std::make_unique<TopicSubscriber>(_server.socketPath(), topic);
    }

private:
    // "user": a broker that root has started would become somebody who may not enter the directory.
    ServerProcess _server{{"/usr/sbin/mosquitto", "-c", "server.conf"},
                          "listener 0 mosquitto.socket\nallow_anonymous true\npersistence false\n"
                          "max_queued_messages 0\nlog_type none\nuser root\n",
                          "mosquitto.socket"};
};

} // namespace

std::unique_ptr<System> makeMosquittoSystem()
{
    return std::make_unique<MosquittoSystem>();
}

} // namespace kelp::bench
