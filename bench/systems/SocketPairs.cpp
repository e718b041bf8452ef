// SPDX-License-Identifier: Apache-2.0
// See System.h.

#include "System.h"

#include "platform/link/UniqueFd.h"

#include <cerrno>
#include <map>
#include <system_error>

#include <sys/socket.h>

namespace kelp::bench {

namespace {

class PairPublisher : public Publisher
{
public:
    explicit PairPublisher(int descriptor) : _descriptor(descriptor) {}

    void publish(const Update &update) override
    {
        const std::string &text = update.text();
        if (::send(_descriptor, text.data(), text.size(), MSG_NOSIGNAL) < 0) {
            throw std::system_error(errno, std::generic_category(), "send");
        }
    }

private:
    int _descriptor; // the system's
};

class PairSubscriber : public Subscriber
{
public:
    explicit PairSubscriber(int descriptor) : _descriptor(descriptor) {}

    int descriptor() const override { return _descriptor; }
    void take(const Sink &sink) override { takeWith(MSG_DONTWAIT, sink); }
    void receive(const Sink &sink) override { takeWith(0, sink); } // what takes the least time

private:
    void takeWith(int flags, const Sink &sink) const
    {
        char buffer[1024];
        const ssize_t size = ::recv(_descriptor, buffer, sizeof buffer, flags);
        if (size > 0) {
            sink(Update::read({buffer, static_cast<std::size_t>(size)}));
        }
    }

    int _descriptor; // the system's
};

class SocketPairs : public System
{
public:
    SocketPairs()
    {
        for (const char *topic : {"a", "b"}) {
            int ends[2];
            if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
                throw std::system_error(errno, std::generic_category(), "socketpair");
            }
            _pairs.emplace(topic, Pair{link::UniqueFd(ends[0]), link::UniqueFd(ends[1])});
        }
    }

    std::unique_ptr<Publisher> publisher(const std::string &topic) override
    {
        return std::make_unique<PairPublisher>(_pairs.at(topic).publisher.get());
    }

    std::unique_ptr<Subscriber> subscriber(const std::string &topic) override
    {
        return std::make_unique<PairSubscriber>(_pairs.at(topic).subscriber.get());
    }

private:
    struct Pair {
        link::UniqueFd publisher;
        link::UniqueFd subscriber;
    };
    std::map<std::string, Pair> _pairs;
};

} // namespace

std::unique_ptr<System> makeSocketPairs()
{
    return std::make_unique<SocketPairs>();
}

} // namespace kelp::bench
