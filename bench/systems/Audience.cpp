// SPDX-License-Identifier: Apache-2.0
// See Audience.h.

#include "Audience.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace kelp::bench {

namespace {

void check(bool isGood, const char *what)
{
    if (!isGood) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

// The subscribers, and what each has read last.
class Seats
{
public:
    Seats(System &system, std::size_t count) : _epoll(::epoll_create1(EPOLL_CLOEXEC)), _last(count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            _subscribers.push_back(system.subscriber("a"));
            epoll_event event{EPOLLIN, {}};
            event.data.u64 = i;
            check(::epoll_ctl(_epoll.get(), EPOLL_CTL_ADD, _subscribers[i]->descriptor(), &event) == 0,
                  "epoll_ctl");
        }
    }

    // Waits for something to read and reads it. Returns how many updates it was.
    std::uint64_t read()
    {
        epoll_event events[128];
        const int ready = ::epoll_wait(_epoll.get(), events, 128, -1);
        std::uint64_t updates = 0;
        for (int i = 0; i < ready; ++i) {
            const std::size_t seat = events[i].data.u64;
            _subscribers[seat]->take([&](const Stamp &stamp) { updates += note(seat, stamp.sequence); });
        }
        return updates;
    }

    // The newest update, if all have read it, else 0.
    std::uint64_t readByAll() const { return _upToDate == _last.size() ? _newest : 0; }

private:
    std::uint64_t note(std::size_t seat, std::uint64_t sequence)
    {
        if (sequence <= _last[seat]) {
            return 0; // not an update, or one that it has read before
        }
        _last[seat] = sequence;
        if (sequence > _newest) {
            _newest = sequence;
            _upToDate = 0;
        }
        _upToDate += sequence == _newest ? 1 : 0;
        return 1;
    }

    link::UniqueFd _epoll;
    std::vector<std::unique_ptr<Subscriber>> _subscribers;
    std::vector<std::uint64_t> _last;
    std::uint64_t _newest = 0;
    std::size_t _upToDate = 0; // that have read the newest
};

} // namespace

Audience::Audience(System &system, std::size_t subscribers) : _bell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    check(static_cast<bool>(_bell), "eventfd");
    link::UniqueFd file; // not needed: a child process has the memory too
    if (const int error = link::SharedMemory::create(sizeof(Progress), _memory, file)) {
        throw std::system_error(error, std::generic_category(), "shared memory");
    }
    _process =
        std::make_unique<ChildProcess>("subscribers", [&](int output) { run(system, subscribers, output); });
    char ready = 0;
    _process->read(&ready, 1);
}

void Audience::run(System &system, std::size_t subscribers, int output)
{
    Seats seats(system, subscribers);
    check(::write(output, "", 1) == 1, "write");
    for (;;) { // until it is ended
        if (const std::uint64_t updates = seats.read()) {
            report(updates, seats.readByAll());
        }
    }
}

void Audience::report(std::uint64_t delivered, std::uint64_t read)
{
    progress().delivered += delivered;
    if (!read) {
        return;
    }
    progress().read = read;
    std::uint64_t wanted = progress().wanted;
    if (wanted && wanted <= read && progress().wanted.compare_exchange_strong(wanted, 0)) {
        check(::eventfd_write(_bell.get(), 1) == 0, "eventfd");
    }
}

void Audience::awaitAll(std::uint64_t sequence)
{
    progress().wanted = sequence; // before the look at what has been read, which the other side does after it
    while (progress().read < sequence) {
        pollfd bell{_bell.get(), POLLIN, 0};
        if (::poll(&bell, 1, 10000) != 1) {
            throw std::runtime_error("a subscriber does not get the last update");
        }
        eventfd_t rings = 0;
        (void)::eventfd_read(_bell.get(), &rings); // one for an update before this is of no interest
    }
}

} // namespace kelp::bench
