// SPDX-License-Identifier: Apache-2.0
// The platform's event queues as any C program uses them.

#include "Events.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <future>
#include <thread>

namespace {

std::atomic<int> s_released{0};

void countRelease(void *data)
{
    s_released += *static_cast<int *>(data);
}

// Runs on a thread of its own, which has no queue yet.
template <typename Body>
void onNewThread(Body body)
{
    std::thread(body).join();
}

} // namespace

TEST(tarn, theDescriptorStaysTheSameAndTellsOfPendingEvents)
{
    onNewThread([] {
        const int descriptor = tarn_queue_descriptor();
        ASSERT_GE(descriptor, 0);
        EXPECT_FALSE(isReadable(descriptor));

        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        const int queue = tarn_queue_id();
        ASSERT_EQ(pushTo(queue, 1), 0);
        ASSERT_EQ(pushTo(queue, 2), 0);
        EXPECT_TRUE(isReadable(descriptor));
        EXPECT_EQ(nextCode(), 1u);
        EXPECT_TRUE(isReadable(descriptor));
        tarn_shutdown(); // the first of two: nothing is dropped
        EXPECT_EQ(nextCode(), 2u);
        EXPECT_FALSE(isReadable(descriptor));
        EXPECT_EQ(nextCode(), 0u);

        tarn_shutdown();
        tarn_shutdown(); // one too many
        EXPECT_EQ(pushTo(queue, 3), ESRCH);
        tarn_event_t *event = nullptr;
        EXPECT_EQ(tarn_next_event(&event, -1), TARN_FAILURE); // at once
        EXPECT_EQ(tarn_queue_descriptor(), descriptor);
        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        EXPECT_EQ(tarn_queue_descriptor(), descriptor);
        EXPECT_EQ(tarn_queue_id(), queue);
        ASSERT_EQ(pushTo(queue, 4), 0);
        EXPECT_TRUE(isReadable(descriptor));
        EXPECT_EQ(nextCode(), 4u);
        tarn_shutdown();
    });
}

TEST(tarn, everyEventIsReleasedOnceHoweverItEnds)
{
    s_released = 0;
    int weights[] = {1, 10, 100, 1000};
    int queue = 0;
    onNewThread([&] {
        queue = tarn_queue_id();
        EXPECT_EQ(pushTo(queue, 1, &weights[0], countRelease), ESRCH); // still the caller's, who ends it
        EXPECT_EQ(s_released.exchange(0), 1);

        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        for (int &weight : weights) {
            ASSERT_EQ(pushTo(queue, 1, &weight, countRelease), 0);
        }
        EXPECT_EQ(nextCode(), 1u);
        EXPECT_EQ(s_released.exchange(0), 1); // taken and ended
        tarn_shutdown();
        EXPECT_EQ(s_released.exchange(0), 1110); // dropped
        EXPECT_FALSE(isReadable(tarn_queue_descriptor()));

        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        ASSERT_EQ(pushTo(queue, 1, &weights[1], countRelease), 0);
    });
    EXPECT_EQ(s_released.exchange(0), 10); // with its thread
    EXPECT_EQ(pushTo(queue, 1), ESRCH);
}

TEST(tarn, eventsOfManyThreadsArriveOnceEachInTheOrderOfTheirSender)
{
    constexpr unsigned int SENDERS = 4;
    constexpr unsigned int EVENTS = 2000;
    ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
    const int queue = tarn_queue_id();
    std::vector<std::thread> senders;
    for (unsigned int sender = 0; sender < SENDERS; ++sender) {
        senders.emplace_back([queue, sender] {
            EXPECT_NE(tarn_queue_id(), queue); // which makes one of its own
            for (unsigned int i = 1; i <= EVENTS; ++i) {
                EXPECT_EQ(pushTo(queue, sender << 16 | i), 0);
            }
        });
    }

    unsigned int last[SENDERS] = {};
    for (unsigned int i = 0; i < SENDERS * EVENTS; ++i) {
        const unsigned int code = nextCode(60000);
        ASSERT_EQ(code & 0xffff, ++last[code >> 16]);
    }
    for (std::thread &sender : senders) {
        sender.join();
    }

    EXPECT_EQ(nextCode(), 0u);
    EXPECT_FALSE(isReadable(tarn_queue_descriptor()));
    tarn_shutdown();
}

TEST(tarn, aWaitEndsWithAnEventOrWhenItsTimeIsUp)
{
    ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
    tarn_event_t *event = reinterpret_cast<tarn_event_t *>(&event); // anything but NULL
    for (const int timeoutMs : {0, 1}) {
        EXPECT_EQ(tarn_next_event(&event, timeoutMs), TARN_SUCCESS);
        EXPECT_EQ(event, nullptr);
    }
    for (const int timeoutMs : {60000, -1}) {
        std::thread pusher([queue = tarn_queue_id()] { EXPECT_EQ(pushTo(queue, 5), 0); });
        EXPECT_EQ(nextCode(timeoutMs), 5u);
        pusher.join();
    }
    tarn_shutdown();
}

TEST(tarn, queuesAndDomainsAreNeverGivenOutTwice)
{
    int first = 0;
    int second = 0;
    onNewThread([&] { first = tarn_queue_id(); });
    onNewThread([&] { second = tarn_queue_id(); });
    EXPECT_GT(first, 0);
    EXPECT_NE(second, first);
    EXPECT_GT(testDomain(), 0);
    EXPECT_NE(tarn_register_domain(), testDomain());
}

TEST(tarn, mistakesAreRefusedAndLeaveOutputsAlone)
{
    onNewThread([] {
        auto *const untouched = reinterpret_cast<tarn_event_t *>(&s_released);
        tarn_event_t *event = untouched;
        const auto failsWith = [](int result) {
            const int error = result == TARN_FAILURE ? errno : 0;
            errno = 0;
            return error;
        };
        EXPECT_EQ(failsWith(tarn_next_event(&event, 0)), EINVAL); // not initialised
        EXPECT_EQ(failsWith(tarn_event_create(nullptr, testDomain(), 1, nullptr, nullptr)), EINVAL);
        for (const int domain : {0, -1, tarn_register_domain() + 1}) {
            EXPECT_EQ(failsWith(tarn_event_create(&event, domain, 1, nullptr, countRelease)), EINVAL)
                << domain;
        }
        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
        EXPECT_EQ(failsWith(tarn_next_event(nullptr, 0)), EINVAL);
        EXPECT_EQ(failsWith(tarn_event_push(tarn_queue_id(), nullptr)), EINVAL);
        EXPECT_EQ(pushTo(0, 1), ESRCH);
        EXPECT_EQ(pushTo(-1, 1), ESRCH);
        EXPECT_EQ(failsWith(tarn_event_get_domain(nullptr)), EINVAL);
        errno = 0;
        EXPECT_EQ(tarn_event_get_code(nullptr), 0u);
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(tarn_event_get_data(nullptr, testDomain()), nullptr);
        EXPECT_EQ(event, untouched);
        tarn_event_destroy(nullptr);
        tarn_free(nullptr);
        tarn_shutdown();
    });
}

TEST(tarn, anEventKeepsWhatItWasMadeWithAndSuccessLeavesErrnoAlone)
{
    onNewThread([] {
        int data = 0;
        tarn_event_t *event = nullptr;
        errno = EXDEV;

        EXPECT_EQ(tarn_initialize(), TARN_SUCCESS);
        EXPECT_EQ(tarn_event_create(&event, testDomain(), 0xffffffff, &data, countRelease), TARN_SUCCESS);
        EXPECT_EQ(tarn_event_push(tarn_queue_id(), event), TARN_SUCCESS);
        EXPECT_GE(tarn_queue_descriptor(), 0);
        EXPECT_EQ(tarn_next_event(&event, -1), TARN_SUCCESS);
        EXPECT_EQ(tarn_event_get_domain(event), testDomain());
        EXPECT_EQ(tarn_event_get_code(event), 0xffffffff);
        EXPECT_EQ(tarn_event_get_data(event, testDomain()), &data);
        EXPECT_EQ(tarn_event_get_data(event, testDomain() + 1), nullptr);
        tarn_event_destroy(event);
        EXPECT_EQ(tarn_next_event(&event, 1), TARN_SUCCESS);
        EXPECT_EQ(event, nullptr);
        tarn_shutdown();

        EXPECT_EQ(errno, EXDEV);
    });
}
