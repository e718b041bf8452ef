// SPDX-License-Identifier: Apache-2.0
// The device's one event loop: descriptors, signals, and a time-out per wait. Everything in the device that waits
// waits here. Only EventLoop.cpp knows what it is made of.
//
//     EventLoop loop;
//     EventLoop::Watch watch = loop.watch(socket);
//     watch.onReadable([&] { receive(); });
//     loop.run();
//
// Threads: post() and stop() may be called from any thread, all else from the one that runs the loop (or before it
// runs). Callbacks are called by run(), one at a time.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kelp::device {

class EventLoop
{
public:
    using Callback = std::function<void()>;
    using Delay = std::optional<std::chrono::nanoseconds>;

    // Calls back while a descriptor is ready. Ends with its owner, also from within its own callbacks; must end before
    // the descriptor is closed and before the loop is destroyed.
    class Watch
    {
    public:
        Watch() = default;
        Watch(Watch &&) = default;
        Watch &operator=(Watch &&other) noexcept;
        ~Watch();

        // Called again and again while the descriptor is readable (writable), its end and errors included. An empty
        // callback ends that.
        void onReadable(Callback callback);
        void onWritable(Callback callback);

        // Calls back no more and lets the descriptor go.
        void end();

    private:
        friend class EventLoop;
        class State;
        explicit Watch(std::shared_ptr<State> state);
        std::shared_ptr<State> _state; // null: watches nothing
    };

    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop &) = delete;
    EventLoop &operator=(const EventLoop &) = delete;

    // Watches a descriptor; one Watch at a time for each. Sets O_NONBLOCK on it.
    // Throws std::system_error when the system cannot watch it (ENOSPC, ENOMEM).
    [[nodiscard]] Watch watch(int descriptor);

    // Takes these signals of the process from now on; to be called once, by the one loop of the process that does so.
    // Throws std::system_error.
    void onSignals(const std::vector<int> &signals, std::function<void(int)> callback);

    // Called before each wait; returns how long the wait may last at most, or nothing for no limit.
    void setBeforeWait(std::function<Delay()> beforeWait);

    // Calls callback from run(), soon.
    void post(Callback callback);

    // Runs until stop(). Lets the exceptions of callbacks through.
    void run();

    // Makes run() return after the present callback; where it does not run yet, at once when it is called.
    void stop();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace kelp::device
