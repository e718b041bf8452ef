// SPDX-License-Identifier: Apache-2.0
// What fork() makes of the event queues: a child's is empty, its own, and under the same descriptor; the parent
// notices nothing.

#include "Events.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <future>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

// Asked by the thread sanitizer. In a child, a thread of the parent that had just ended is one that nobody can join.
extern "C" const char *__tsan_default_options();
extern "C" const char *__tsan_default_options()
{
    return "report_thread_leaks=0";
}

namespace {

// Runs body in a child of the calling thread. Returns the number of the first check that failed there, 0 for none.
int inChild(const std::function<int()> &body)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(body());
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// That the calling thread's queue is empty and works under its old descriptor. Leaves one event on it.
int checkFreshQueue(int descriptor, int queue)
{
    if (tarn_queue_descriptor() != descriptor || tarn_queue_id() != queue) {
        return 1;
    }
    if (isReadable(descriptor) || nextCode() != 0) {
        return 2;
    }
    if (pushTo(queue, 11) != 0 || !isReadable(descriptor) || nextCode() != 11 || isReadable(descriptor)) {
        return 3;
    }
    return pushTo(queue, 12) == 0 && isReadable(descriptor) ? 0 : 4;
}

class Fork : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        descriptor = tarn_queue_descriptor();
        queue = tarn_queue_id();
    }
    void TearDown() override { tarn_shutdown(); }

    int descriptor = -1;
    int queue = 0;
};

} // namespace

TEST_F(Fork, theChildStartsEmptyAndTheParentKeepsItsEvents)
{
    ASSERT_EQ(pushTo(queue, 1), 0);
    ASSERT_EQ(pushTo(queue, 2), 0);

    EXPECT_EQ(inChild([this] { return checkFreshQueue(descriptor, queue); }), 0);

    EXPECT_TRUE(isReadable(descriptor));
    EXPECT_EQ(nextCode(), 1u);
    EXPECT_EQ(nextCode(), 2u);
    EXPECT_FALSE(isReadable(descriptor));
    EXPECT_EQ(inChild([this] { return checkFreshQueue(descriptor, queue); }), 0); // with none pending
    EXPECT_FALSE(isReadable(descriptor));
    EXPECT_EQ(nextCode(), 0u);
}

TEST_F(Fork, aChildOfAChildStartsEmptyToo)
{
    ASSERT_EQ(pushTo(queue, 1), 0);

    const int failed = inChild([this] {
        const int inBetween = inChild([this] { return checkFreshQueue(descriptor, queue); });
        return inBetween ? inBetween + 10 : checkFreshQueue(descriptor, queue);
    });

    EXPECT_EQ(failed, 0);
    EXPECT_EQ(nextCode(), 1u);
}

TEST_F(Fork, theChildHasTheCountOfInitialisationsAndTheForkingThreadsQueueOnly)
{
    std::promise<int> other;
    std::promise<void> end;
    std::thread thread([&] {
        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        other.set_value(tarn_queue_id());
        end.get_future().wait();
        EXPECT_EQ(nextCode(), 3u);
    });
    const int otherQueue = other.get_future().get();

    const int failed = inChild([&] {
        if (pushTo(otherQueue, 1) != ESRCH) {
            return 1; // its thread is not here
        }
        tarn_shutdown();
        return pushTo(queue, 1) == ESRCH ? 0 : 2; // it was the last
    });

    EXPECT_EQ(failed, 0);
    EXPECT_EQ(pushTo(otherQueue, 3), 0);
    end.set_value();
    thread.join();
}

TEST_F(Fork, worksWhileOtherThreadsPush)
{
    constexpr unsigned int SENDERS = 2;
    std::atomic<bool> enough{false};
    std::atomic<unsigned int> pushed{0};
    std::vector<std::thread> senders;
    for (unsigned int sender = 0; sender < SENDERS; ++sender) {
        senders.emplace_back([&, sender] {
            for (unsigned int i = 1; !enough && i < 0x10000; ++i) {
                EXPECT_EQ(pushTo(queue, sender << 16 | i), 0);
                ++pushed;
            }
        });
    }

    unsigned int last[SENDERS] = {};
    unsigned int taken = 0;
    const auto takeOne = [&] {
        const unsigned int code = nextCode(60000);
        EXPECT_EQ(code & 0xffff, ++last[code >> 16]);
        ++taken;
    };
    for (int i = 0; i < 40; ++i) {
        takeOne();
        ASSERT_EQ(inChild([this] { return checkFreshQueue(descriptor, queue); }), 0) << "fork " << i;
    }
    enough = true;
    for (std::thread &sender : senders) {
        sender.join();
    }
    while (taken < pushed) {
        takeOne();
    }
    EXPECT_FALSE(isReadable(descriptor));
}
