// SPDX-License-Identifier: Apache-2.0
// The event loop on Boost.Asio, which appears nowhere else.

#include "EventLoop.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>

#include <array>
#include <csignal>
#include <system_error>
#include <utility>

namespace kelp::device {

namespace asio = boost::asio;
using ErrorCode = boost::system::error_code;

namespace {

[[noreturn]] void fail(const ErrorCode &error, const char *what)
{
    throw std::system_error(error.value(), std::system_category(), what);
}

} // namespace

// Shared by the Watch and the waits that it has under way, so that it outlives the callback that ends the Watch.
class EventLoop::Watch::State : public std::enable_shared_from_this<State>
{
public:
    using Wait = asio::posix::stream_descriptor::wait_type;

    explicit State(asio::io_context &context) : _descriptor(context) {}

    void begin(int descriptor)
    {
        ErrorCode error;
        _descriptor.assign(descriptor, error);
        if (error) {
            fail(error, "cannot watch a descriptor");
        }
    }

    void end()
    {
        _callbacks = {};
        if (_descriptor.is_open()) {
            _descriptor.release(); // cancels the waits; the descriptor stays its owner's
        }
    }

    void set(Wait wait, Callback callback)
    {
        _callbacks[wait] = std::move(callback);
        arm(wait);
    }

private:
    void arm(Wait wait)
    {
        if (!_callbacks[wait] || _isArmed[wait]) {
            return;
        }
        _isArmed[wait] = true;
        _descriptor.async_wait(wait, [self = shared_from_this(), wait](const ErrorCode &error) {
            self->_isArmed[wait] = false;
            self->call(wait, error);
        });
    }

    void call(Wait wait, const ErrorCode &error)
    {
        if (error == asio::error::operation_aborted || !_callbacks[wait]) {
            return;
        }
        const Callback callback = _callbacks[wait]; // a copy: the callback may replace itself
        callback();
        arm(wait);
    }

    asio::posix::stream_descriptor _descriptor;
    std::array<Callback, 2> _callbacks; // by Wait: readable, writable
    std::array<bool, 2> _isArmed{};
};

EventLoop::Watch::Watch(std::shared_ptr<State> state) : _state(std::move(state)) {}

EventLoop::Watch &EventLoop::Watch::operator=(Watch &&other) noexcept
{
    end();
    _state = std::move(other._state);
    return *this;
}

EventLoop::Watch::~Watch()
{
    end();
}

void EventLoop::Watch::onReadable(Callback callback)
{
    _state->set(State::Wait::wait_read, std::move(callback));
}

void EventLoop::Watch::onWritable(Callback callback)
{
    _state->set(State::Wait::wait_write, std::move(callback));
}

void EventLoop::Watch::end()
{
    if (const auto state = std::exchange(_state, nullptr)) {
        state->end();
    }
}

class EventLoop::Private
{
public:
    void awaitSignal()
    {
        signals.async_wait([this](const ErrorCode &error, int signal) {
            if (!error) {
                onSignal(signal);
                awaitSignal();
            }
        });
    }

    void runOnce(const Delay &longest)
    {
        if (longest) {
            (void)context.run_one_for(*longest); // whether something was run does not matter
        } else {
            (void)context.run_one();
        }
    }

    asio::io_context context{1};
    asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
    asio::signal_set signals{context};
    std::function<void(int)> onSignal;
    std::function<Delay()> beforeWait = [] {
        return Delay();
    };
};

EventLoop::EventLoop() : d(std::make_unique<Private>()) {}

EventLoop::~EventLoop() = default;

EventLoop::Watch EventLoop::watch(int descriptor)
{
    auto state = std::make_shared<Watch::State>(d->context);
    state->begin(descriptor);
    return Watch(std::move(state));
}

void EventLoop::onSignals(const std::vector<int> &signals, std::function<void(int)> callback)
{
    d->onSignal = std::move(callback);
    sigset_t taken;
    ::sigemptyset(&taken);
    for (const int signal : signals) {
        ErrorCode error;
        d->signals.add(signal, error);
        if (error) {
            fail(error, "cannot take a signal");
        }
        ::sigaddset(&taken, signal);
    }
    // Whoever started this process may have blocked them for good.
    if (const int error = ::pthread_sigmask(SIG_UNBLOCK, &taken, nullptr)) {
        throw std::system_error(error, std::system_category(), "cannot unblock signals");
    }
    d->awaitSignal();
}

void EventLoop::setBeforeWait(std::function<Delay()> beforeWait)
{
    d->beforeWait = std::move(beforeWait);
}

void EventLoop::post(Callback callback)
{
    asio::post(d->context, std::move(callback));
}

void EventLoop::run()
{
    while (!d->context.stopped()) {
        d->runOnce(d->beforeWait());
    }
}

void EventLoop::stop()
{
    d->context.stop();
}

} // namespace kelp::device
