// SPDX-License-Identifier: Apache-2.0
// The event loop: who is called for what and how often, and what callbacks may do to themselves and to each other.

#include "device/loop/EventLoop.h"
#include "platform/link/UniqueFd.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

using namespace std::chrono_literals;
using kelp::device::EventLoop;
using kelp::link::UniqueFd;

namespace {

struct Pair {
    UniqueFd mine;
    UniqueFd other;
};

Pair sockets()
{
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
    return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

Pair pipeEnds(bool mineWrites)
{
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    return {UniqueFd(ends.at(mineWrites)), UniqueFd(ends.at(!mineWrites))};
}

void sendByte(const UniqueFd &descriptor)
{
    EXPECT_EQ(::write(descriptor.get(), "x", 1), 1);
}

class TestedLoop : public testing::Test
{
protected:
    EventLoop::Callback note(const std::string &what)
    {
        return [this, what] {
            notes += what;
        };
    }

    // What is noted in so many turns, none of which waits.
    std::string turn(int turns = 1)
    {
        struct Enough {
        };
        loop.setBeforeWait([&turns] { return turns-- > 0 ? 0ns : throw Enough(); });
        try {
            loop.run();
        } catch (const Enough &) {
        }
        return std::exchange(notes, {});
    }

    EventLoop loop;
    std::string notes;
};

TEST_F(TestedLoop, CallsWhileADescriptorIsReadyAndLetsItGoWhenNothingIsWanted)
{
    Pair pair = sockets();
    sendByte(pair.other);
    EventLoop::Watch watch = loop.watch(pair.mine.get());
    EventLoop::Watch second = loop.watch(pair.mine.get());
    EXPECT_NE(::fcntl(pair.mine.get(), F_GETFL) & O_NONBLOCK, 0);

    watch.onReadable(note("r"));
    EXPECT_EQ(turn(2), "rr");
    watch.onWritable(note("w"));
    EXPECT_EQ(turn(), "rw");
    watch.onReadable({});
    EXPECT_EQ(turn(), "w");
    EXPECT_THROW(second.onReadable(note("s")), std::system_error); // there is one already
    pair.other.reset();
    watch.onWritable({}); // now the system would report a hang-up again and again
    second.onReadable(note("s"));
    EXPECT_EQ(turn(), "s");
    EXPECT_THROW((void)loop.watch(-1), std::system_error);
}

TEST_F(TestedLoop, CallsNobodyWhoWasEndedInTheSameTurn)
{
    struct Party {
        Pair pair = sockets();
        EventLoop::Watch watch;
    };
    using End = void (*)(EventLoop &, std::unique_ptr<Party> &, const EventLoop::Callback &);
    const std::array<End, 4> ends = {
        [](auto &, auto &other, auto &) { other->watch.end(); },
        [](auto &, auto &other, auto &) { other.reset(); },
        [](auto &, auto &other, auto &) { other->watch.onReadable({}); },
        [](auto &loop, auto &other, auto &tell) { // the new one gets the old one's descriptor
            const int number = other->pair.mine.get();
            other.reset();
            other = std::make_unique<Party>();
            EXPECT_EQ(other->pair.mine.get(), number);
            other->watch = loop.watch(number);
            other->watch.onReadable(tell);
        },
    };

    for (const End end : ends) {
        std::array<std::unique_ptr<Party>, 2> parties;
        for (std::size_t i : {0, 1}) {
            parties[i] = std::make_unique<Party>();
            sendByte(parties[i]->pair.other);
            parties[i]->watch = loop.watch(parties[i]->pair.mine.get());
            parties[i]->watch.onReadable([this, end, &other = parties[1 - i]] {
                notes += "called";
                end(loop, other, note("stranger"));
            });
        }
        EXPECT_EQ(turn(), "called"); // whichever came first
    }
}

TEST_F(TestedLoop, LetsACallbackReplaceAndEndItself)
{
    const Pair pair = sockets();
    sendByte(pair.other);
    auto watch = std::make_unique<EventLoop::Watch>(loop.watch(pair.mine.get()));
    watch->onWritable(note("never"));
    const std::string captured = "longer than what a string holds without memory of its own";
    watch->onReadable([&, captured] {
        watch->onReadable([&, captured] {
            watch.reset();
            notes += captured.front();
        });
        notes += captured.back();
        watch->onWritable({});
    });

    EXPECT_EQ(turn(3), "nl");
}

TEST_F(TestedLoop, RingsOnceForWhatHasCome)
{
    const UniqueFd bell(::eventfd(0, EFD_CLOEXEC));
    EventLoop::Watch watch = loop.watch(bell.get());
    (void)::eventfd_write(bell.get(), 1); // before anybody listens
    watch.onDoorbell(note("b"));
    EXPECT_EQ(turn(2), "b");

    (void)::eventfd_write(bell.get(), 1);
    (void)::eventfd_write(bell.get(), 1);

    EXPECT_EQ(turn(2), "b");
    const EventLoop::Watch moved = std::move(watch);
    (void)::eventfd_write(bell.get(), 1);
    EXPECT_EQ(turn(2), "b");
}

TEST_F(TestedLoop, TellsOnceThatTheOtherEndIsGone)
{
    std::array<Pair, 3> pairs = {sockets(), pipeEnds(false), pipeEnds(true)};
    for (Pair &pair : pairs) {
        EventLoop::Watch watch = loop.watch(pair.mine.get());
        watch.onHangUp(note("h"));
        (void)!::write(pair.other.get(), "x",
                       1); // that there is something to read is no news; not every end can write
        EXPECT_EQ(turn(), "");

        pair.other.reset();

        EXPECT_EQ(turn(2), "h");
    }
    Pair halfClosed = sockets();
    EventLoop::Watch watch = loop.watch(halfClosed.mine.get());
    watch.onReadable(note("r"));
    watch.onHangUp(note("h"));
    ::shutdown(halfClosed.other.get(), SHUT_WR);
    EXPECT_EQ(turn(2), "rhr");
}

TEST_F(TestedLoop, LosesNothingToAnException)
{
    const auto failOnce = [this](const std::string &what) {
        return [this, what] {
            notes += what;
            throw std::runtime_error(what);
        };
    };
    const std::array<UniqueFd, 3> bells = {UniqueFd(::eventfd(1, EFD_CLOEXEC)),
                                           UniqueFd(::eventfd(1, EFD_CLOEXEC)),
                                           UniqueFd(::eventfd(1, EFD_CLOEXEC))};
    std::array<EventLoop::Watch, 3> watches;
    for (std::size_t i = 0; i < bells.size(); ++i) {
        watches.at(i) = loop.watch(bells.at(i).get());
        watches.at(i).onDoorbell(failOnce("b"));
    }
    loop.post(failOnce("p"));
    loop.post(failOnce("p"));
    loop.setBeforeWait([this] {
        notes += "|";
        return 0ns;
    });

    for (int i = 0; i < 5; ++i) {
        EXPECT_THROW(loop.run(), std::runtime_error);
    }

    EXPECT_EQ(std::exchange(notes, {}), "|bbbpp"); // all of one wait
    EXPECT_EQ(turn(), "");
}

TEST_F(TestedLoop, TakesCallsAndItsEndFromOtherThreads)
{
    constexpr int CALLS = 1000;
    int called = 0;
    std::thread poster([&] {
        for (int i = 0; i < CALLS; ++i) {
            loop.post([&, i] { called += called == i; }); // counts only in this order
        }
        loop.post([&] {
            loop.post([&] { loop.stop(); });
            notes += "last";
        });
    });
    loop.run(); // waits without a limit
    poster.join();
    EXPECT_EQ(called, CALLS);
    EXPECT_EQ(notes, "last");
    loop.run(); // returns: it was stopped

    EventLoop other;
    std::thread stopper([&] { other.stop(); });
    other.run();
    stopper.join();
}

TEST_F(TestedLoop, StopsAfterThePresentCallback)
{
    const UniqueFd bell(::eventfd(1, EFD_CLOEXEC));
    EventLoop::Watch watch = loop.watch(bell.get());
    watch.onReadable([this] {
        notes += "r";
        loop.stop();
    });
    watch.onWritable(note("w"));
    loop.post(note("p"));

    loop.run();

    EXPECT_EQ(notes.substr(notes.find('r')), "r");
}

TEST_F(TestedLoop, WaitsUntilTheNextDeadlineAndTurnsNoMoreThanThat)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const std::array<Clock::time_point, 3> deadlines = {start + 300us, start + 1ms, start + 2700us};
    std::size_t met = 0;
    std::size_t turns = 0;
    loop.setBeforeWait([&]() -> EventLoop::Delay {
        ++turns;
        while (met < deadlines.size() && Clock::now() >= deadlines.at(met)) {
            ++met;
        }
        if (met == deadlines.size()) {
            loop.stop();
            return {}; // no limit: stop() must do
        }
        return deadlines.at(met) - Clock::now(); // negative where it has passed meanwhile
    });

    loop.run();

    EXPECT_LE(turns, deadlines.size() + 1);
}

TEST(LoopSignals, AreTakenInOrderAndGivenBack)
{
    sigset_t blocked;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR2);
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    std::signal(SIGUSR1, SIG_IGN);
    {
        EventLoop loop;
        EventLoop other;
        std::vector<int> numbers;
        loop.onSignals({SIGUSR1, SIGUSR2}, [&](int number) {
            numbers.push_back(number);
            if (numbers.size() == 3) {
                loop.stop();
            }
        });
        EXPECT_THROW(other.onSignals({SIGUSR1}, [](int) {}), std::system_error);
        for (const int number : {SIGUSR2, SIGUSR1, SIGUSR2}) {
            ::raise(number);
        }

        loop.run();

        EXPECT_EQ(numbers, (std::vector<int>{SIGUSR2, SIGUSR1, SIGUSR2}));
        EXPECT_THROW(other.onSignals({SIGUSR1, SIGKILL}, [](int) {}), std::system_error);
    }
    EXPECT_EQ(std::signal(SIGUSR1, SIG_DFL), SIG_IGN);
    EXPECT_EQ(std::signal(SIGUSR2, SIG_DFL), SIG_DFL);
    EventLoop().onSignals({SIGUSR1}, [](int) {}); // free again
}

} // namespace
