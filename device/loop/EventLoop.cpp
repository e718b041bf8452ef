// SPDX-License-Identifier: Apache-2.0
// See EventLoop.h. What the loop turns over: the events of one wait, then what was posted, then the next wait.

#include "EventLoop.h"

#include "EpollSet.h"
#include "Registration.h"
#include "SignalPipe.h"
#include "platform/link/UniqueFd.h"

#include <atomic>
#include <cerrno>
#include <deque>
#include <iterator>
#include <mutex>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/eventfd.h>

namespace kelp::device {

namespace {

[[noreturn]] void fail(const char *what)
{
    throw std::system_error(errno, std::system_category(), what);
}

void makeNonBlocking(int descriptor)
{
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags < 0 || (!(flags & O_NONBLOCK) && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) != 0)) {
        fail("cannot watch a descriptor");
    }
}

} // namespace

class EventLoop::Private
{
public:
    Private();

    void run();
    void post(Callback callback);
    void stop();
    void takeSignals(const std::vector<int> &signals, std::function<void(int)> callback);

    Watch watch(int descriptor);

    std::function<Delay()> beforeWait = [] {
        return Delay();
    };

private:
    void callPosted();
    void takePosted();
    void ring();

    EpollSet _set;
    link::UniqueFd _bell; // rings for what other threads have done
    std::deque<Callback> _due;

    std::atomic<bool> _isStopped = false;
    std::mutex _mutex; // guards _posted
    std::deque<Callback> _posted;

    std::unique_ptr<SignalPipe> _signals;
    Watch _signalWatch;
    Watch _bellWatch; // of _bell
};

EventLoop::Watch::Watch() = default;
EventLoop::Watch::Watch(Watch &&other) noexcept = default;
EventLoop::Watch::Watch(std::unique_ptr<Registration> registration) : _registration(std::move(registration))
{}
EventLoop::Watch::~Watch() = default;

EventLoop::Watch &EventLoop::Watch::operator=(Watch &&other) noexcept
{
    const auto former = std::exchange(_registration, std::move(other._registration));
    return *this;
}

void EventLoop::Watch::onReadable(Callback callback)
{
    _registration->set(Registration::READABLE, std::move(callback));
}

void EventLoop::Watch::onWritable(Callback callback)
{
    _registration->set(Registration::WRITABLE, std::move(callback));
}

void EventLoop::Watch::onDoorbell(Callback callback)
{
    _registration->set(Registration::DOORBELL, std::move(callback));
}

void EventLoop::Watch::onHangUp(Callback callback)
{
    _registration->set(Registration::HANG_UP, std::move(callback));
}

void EventLoop::Watch::end()
{
    // Out of its place first: what its callbacks own may come here again as it goes.
    const auto former = std::exchange(_registration, nullptr);
}

EventLoop::Private::Private() : _bell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!_bell) {
        fail("cannot make an event loop");
    }
    _bellWatch = watch(_bell.get());
    _bellWatch.onDoorbell([this] { takePosted(); });
}

EventLoop::Watch EventLoop::Private::watch(int descriptor)
{
    makeNonBlocking(descriptor);
    return Watch(std::make_unique<Registration>(_set, descriptor));
}

void EventLoop::Private::run()
{
    for (;;) {
        while (!_isStopped && _set.callNext()) {
        }
        callPosted();
        if (_isStopped) {
            return;
        }
        const Delay longest = beforeWait();
        if (_isStopped) {
            return;
        }
        _set.wait(longest);
    }
}

void EventLoop::Private::callPosted()
{
    while (!_due.empty() && !_isStopped) {
        const Callback callback = std::move(_due.front());
        _due.pop_front();
        callback();
    }
}

void EventLoop::Private::post(Callback callback)
{
    const std::lock_guard lock(_mutex);
    _posted.push_back(std::move(callback));
    if (_posted.size() == 1) {
        ring();
    }
}

void EventLoop::Private::takePosted()
{
    const std::lock_guard lock(_mutex);
    std::move(_posted.begin(), _posted.end(), std::back_inserter(_due));
    _posted.clear();
}

void EventLoop::Private::stop()
{
    _isStopped = true;
    ring();
}

void EventLoop::Private::ring()
{
    (void)::eventfd_write(_bell.get(), 1); // fails only where it has rung 2^64 times
}

void EventLoop::Private::takeSignals(const std::vector<int> &signals, std::function<void(int)> callback)
{
    _signals = std::make_unique<SignalPipe>(signals);
    _signalWatch = watch(_signals->descriptor());
    // One at a time: stop() and exceptions leave the others where they are.
    _signalWatch.onReadable([this, callback = std::move(callback)] {
        if (const int number = _signals->next()) {
            callback(number);
        }
    });
}

EventLoop::EventLoop() : d(std::make_unique<Private>()) {}

EventLoop::~EventLoop() = default;

EventLoop::Watch EventLoop::watch(int descriptor)
{
    return d->watch(descriptor);
}

void EventLoop::onSignals(const std::vector<int> &signals, std::function<void(int)> callback)
{
    d->takeSignals(signals, std::move(callback));
}

void EventLoop::setBeforeWait(std::function<Delay()> beforeWait)
{
    d->beforeWait = std::move(beforeWait);
}

void EventLoop::post(Callback callback)
{
    d->post(std::move(callback));
}

void EventLoop::run()
{
    d->run();
}

void EventLoop::stop()
{
    d->stop();
}

} // namespace kelp::device
