// SPDX-License-Identifier: Apache-2.0
// The device's one event loop: descriptors, signals, and a time-out per wait. Everything in the device that waits
// waits here. An event costs a share of one system call: descriptors stay registered, and many events come at once.
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

class Registration;

class EventLoop
{
public:
    using Callback = std::function<void()>;
    using Delay = std::optional<std::chrono::nanoseconds>;

    // Calls back when something happens to a descriptor. Ends with its owner, also from within its own callbacks, and
    // then calls back no more, whatever has happened already; must end before the descriptor is closed and before the
    // loop is destroyed.
    //
    // Each callback may be replaced at any time, by itself too; an empty one ends that kind of call. Setting one throws
    // std::system_error when the system cannot watch the descriptor (ENOSPC, ENOMEM), or when another Watch has it
    // (EEXIST); only the first one that is set can fail.
    class Watch
    {
    public:
        Watch();
        Watch(Watch &&other) noexcept;
        Watch &operator=(Watch &&other) noexcept;
        ~Watch();

        // Called again and again while the descriptor is readable (writable), its end and errors included.
        void onReadable(Callback callback);
        void onWritable(Callback callback);

        // Called once for what has come since the last call, however much that is; the descriptor, an eventfd, need not
        // be read. What came before is announced as well. Not to be used together with the two above.
        void onDoorbell(Callback callback);

        // Called once, when the other end is gone: of a socket when it has closed or shut down its sending side, of a
        // pipe when nobody has its other end open. Data may still be waiting to be read.
        void onHangUp(Callback callback);

        // Calls back no more and lets the descriptor go.
        void end();

    private:
        friend class EventLoop;
        explicit Watch(std::unique_ptr<Registration> registration);
        std::unique_ptr<Registration> _registration; // null: watches nothing
    };

    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop &) = delete;
    EventLoop &operator=(const EventLoop &) = delete;

    // Watches a descriptor; one Watch at a time for each. Sets O_NONBLOCK on it.
    // Throws std::system_error when it is no open descriptor (EBADF).
    [[nodiscard]] Watch watch(int descriptor);

    // Takes these signals of the process from now on and until the loop is destroyed; to be called once, by the one loop
    // of the process that does so. Throws std::system_error.
    void onSignals(const std::vector<int> &signals, std::function<void(int)> callback);

    // Called before each wait, when all that the last one brought has been dealt with; returns how long the wait may
    // last at most, or nothing for no limit.
    void setBeforeWait(std::function<Delay()> beforeWait);

    // Calls callback from run(), soon.
    void post(Callback callback);

    // Runs until stop(). Lets the exceptions of callbacks through; called again, it goes on where it was.
    void run();

    // Makes run() return after the present callback, and at once whenever it is called later.
    void stop();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace kelp::device
