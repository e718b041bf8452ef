// SPDX-License-Identifier: Apache-2.0
// The navigator's interface where there is no device: requests fail at once, and readers answer for any event.

#include "Events.h"

#include <navigator/navigator.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <initializer_list>
#include <string>

namespace {

struct Request {
    const char *text;
    int (*make)();
};
#define REQUEST(call)                                                                                        \
    Request({#call, []() -> int {                                                                            \
                 return navigator_##call;                                                                    \
             }})

char *const UNTOUCHED = reinterpret_cast<char *>(1);
char *s_text = UNTOUCHED; // what requests hand out
const std::string LONGEST(NAVIGATOR_MAX_TEXT, 'x');
const std::string TOO_LONG(NAVIGATOR_MAX_TEXT + 1, 'x');

const Request REQUESTS[] = {
    REQUEST(request_events(0)),
    REQUEST(request_events(NAVIGATOR_EVENTS_EXTENDED)),
    REQUEST(close_window()),
    REQUEST(extend_terminate()),
    REQUEST(extend_timeout(1000, nullptr)),
    REQUEST(pooled_response(LONGEST.c_str())),
    REQUEST(set_close_prompt("", LONGEST.c_str())),
    REQUEST(clear_close_prompt()),
    REQUEST(raw_write(LONGEST.data(), NAVIGATOR_MAX_TEXT)),
    REQUEST(set_badge(NAVIGATOR_BADGE_SPLAT)),
    REQUEST(clear_badge()),
    REQUEST(orientation_check_response_id("1", true)),
    REQUEST(done_orientation_id("1")),
    REQUEST(set_orientation(90, &s_text)),
    REQUEST(rotation_lock(true)),
    REQUEST(request_swipe_start()),
    REQUEST(stop_swipe_start()),
};

const Request MISTAKES[] = {
    REQUEST(request_events(2)),
    REQUEST(stop_events(3)),
    REQUEST(pooled_response(nullptr)),
    REQUEST(set_close_prompt(nullptr, "")),
    REQUEST(set_close_prompt("", nullptr)),
    REQUEST(raw_write(nullptr, 0)),
    REQUEST(orientation_check_response_id(nullptr, true)),
    REQUEST(done_orientation_id(nullptr)),
};

const Request TOO_LONG_TEXTS[] = {
    REQUEST(pooled_response(TOO_LONG.c_str())),
    REQUEST(set_close_prompt(TOO_LONG.c_str(), "")),
    REQUEST(set_close_prompt("", TOO_LONG.c_str())),
    REQUEST(raw_write(TOO_LONG.data(), NAVIGATOR_MAX_TEXT + 1)),
};

template <std::size_t Count>
void expectFailure(const Request (&requests)[Count], int error)
{
    for (const Request &request : requests) {
        errno = 0;
        EXPECT_EQ(request.make(), TARN_FAILURE) << request.text;
        EXPECT_EQ(errno, error) << request.text;
    }
}

class Navigator : public testing::Test
{
protected:
    void SetUp() override
    {
        ::unsetenv("KELP_DEVICE");
        ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
    }
    void TearDown() override { tarn_shutdown(); }
};

} // namespace

TEST_F(Navigator, requestsFailAtOnceWithoutADevice)
{
    expectFailure(REQUESTS, ENOTCONN);
    for (const std::string &directory : {std::string(), std::string("/nonexistent/device"),
                                         std::string("/dev/null"), std::string(1000, '/')}) {
        ASSERT_EQ(::setenv("KELP_DEVICE", directory.c_str(), 1), 0);
        expectFailure(REQUESTS, ENOTCONN);
    }
    EXPECT_EQ(s_text, UNTOUCHED);
    EXPECT_EQ(navigator_extend_timeout(1000, &s_text), TARN_FAILURE);
    EXPECT_EQ(s_text, nullptr); // no reason
    EXPECT_FALSE(isReadable(tarn_queue_descriptor()));
    EXPECT_EQ(nextCode(1), 0u); // and nothing is left of the channels
}

TEST_F(Navigator, mistakesAreRefusedBeforeADeviceIsLookedFor)
{
    expectFailure(MISTAKES, EINVAL);
    expectFailure(TOO_LONG_TEXTS, E2BIG);
    EXPECT_EQ(navigator_stop_events(0), TARN_SUCCESS);
    tarn_shutdown();
    expectFailure({{"not initialised",
                    [] {
                        return navigator_request_events(0);
                    }}},
                  EINVAL);
    EXPECT_EQ(navigator_stop_events(0), TARN_SUCCESS);
    ASSERT_EQ(tarn_initialize(), TARN_SUCCESS);
}

TEST_F(Navigator, readersAnswerForEventsThatAreNotTheirs)
{
    int data = 7;
    tarn_event_t *foreign = nullptr;
    ASSERT_EQ(tarn_event_create(&foreign, testDomain(), NAVIGATOR_WINDOW_STATE, &data, nullptr),
              TARN_SUCCESS);
    tarn_event_t *empty = nullptr;
    ASSERT_EQ(tarn_event_create(&empty, navigator_get_domain(), NAVIGATOR_POOLED, nullptr, nullptr),
              TARN_SUCCESS);
    const EventPointer owners[] = {EventPointer(foreign), EventPointer(empty)};
    EXPECT_GT(navigator_get_domain(), 0);
    EXPECT_NE(navigator_get_domain(), testDomain());

    for (const tarn_event_t *event : std::initializer_list<const tarn_event_t *>{nullptr, foreign, empty}) {
        for (const auto reader :
             {navigator_event_get_window_state, navigator_event_get_app_state, navigator_event_get_severity,
              navigator_event_get_orientation_angle, navigator_event_get_orientation_size_width,
              navigator_event_get_orientation_size_height}) {
            errno = 0;
            EXPECT_EQ(reader(event), TARN_FAILURE);
            EXPECT_EQ(errno, EINVAL);
        }
        EXPECT_STREQ(navigator_event_get_groupid(event), "");
        EXPECT_STREQ(navigator_event_get_id(event), "");
    }
}
