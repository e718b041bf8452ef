// SPDX-License-Identifier: Apache-2.0
// What applications ask of the navigator, but for their exit: what each request does, and the errno it fails
// with.
#include "NavigatorFixture.h"

namespace kelp::device {

using link::RequestCode;
using NavigatorRequests = NavigatorFixture;

TEST_F(NavigatorRequests, poolingEndsWithItsAnswerOrItsTime)
{
    const ProcessId process = launch("a");
    const ProcessId other = launch("b");
    EXPECT_EQ(event("pool", {{"app", "a"}}), 0);
    EXPECT_EQ(last.text, "pool-1");
    step(1s);
    EXPECT_EQ(event("pool", {{"app", "a"}}), 0);
    EXPECT_EQ(sent(), Lines({"1: pooled pool-1", "1: pooled pool-2"}));
    EXPECT_EQ(state().deadlines.at(1).id, "pool-2");
    EXPECT_EQ(state().deadlines.at(1).remaining, 5s);

    EXPECT_EQ(request(other, RequestCode::PooledResponse, "pool-1"), EINVAL);
    EXPECT_EQ(request(process, RequestCode::PooledResponse, "pool-3"), EINVAL);
    EXPECT_EQ(request(process, RequestCode::PooledResponse, "pool-2"), 0);
    EXPECT_EQ(request(process, RequestCode::PooledResponse, "pool-2"), EINVAL);
    step(4s);
    EXPECT_EQ(request(process, RequestCode::PooledResponse, "pool-1"), EINVAL);

    EXPECT_EQ(port.traces.at(port.traces.size() - 2), "5000 101 a|pool reached: no answer to pool-1 in time");
    EXPECT_EQ(navigator.nextDeadline(), std::nullopt);
}

TEST_F(NavigatorRequests, answersThatOneApplicationOwesAreBounded)
{
    launch("a");
    for (int pooled = 0; pooled < 32; ++pooled) {
        ASSERT_EQ(event("pool"), 0);
    }

    EXPECT_EQ(event("pool"), EAGAIN);
    EXPECT_EQ(request(1, RequestCode::PooledResponse, "pool-32"), 0);
    EXPECT_EQ(event("pool"), 0);
}

TEST_F(NavigatorRequests, processThatIsNoApplicationMaySetItsPromptAndLittleElse)
{
    const ProcessId process = navigator.connected(101, "a");

    EXPECT_EQ(request(process, RequestCode::SetClosePrompt, "t"), 0);
    EXPECT_EQ(request(process, RequestCode::ClearClosePrompt), 0);
    for (const RequestCode code :
         {RequestCode::CloseWindow, RequestCode::ExtendTerminate, RequestCode::ExtendTimeout,
          RequestCode::PooledResponse, RequestCode::RawWrite}) {
        EXPECT_EQ(request(process, code, "msg::minimizeWindow\n", 500), EINVAL) << static_cast<int>(code);
        EXPECT_TRUE(lastSays("is for applications"));
    }
    EXPECT_EQ(request(2, RequestCode::CloseWindow), EINVAL);
    EXPECT_EQ(navigator.nextDeadline(), std::nullopt);
}

TEST_F(NavigatorRequests, whatIsNotOfferedSaysSoByName)
{
    launch("a");
    const std::pair<RequestCode, std::string> cases[] = {
        {RequestCode::SetBadge, "set-badge"},
        {RequestCode::ClearBadge, "clear-badge"},
        {RequestCode::OrientationCheckResponse, "orientation-check-response"},
        {RequestCode::DoneOrientation, "done-orientation"},
        {RequestCode::SetOrientation, "set-orientation"},
        {RequestCode::RotationLock, "rotation-lock"},
        {RequestCode::RequestSwipeStart, "request-swipe-start"},
        {RequestCode::StopSwipeStart, "stop-swipe-start"},
        {static_cast<RequestCode>(99), "unknown-request"},
    };
    for (const auto &[code, name] : cases) {
        EXPECT_EQ(request(1, code), ENOTSUP) << name;
        EXPECT_TRUE(lastSays(name));
    }
}

TEST_F(NavigatorRequests, windowCreationTakesATimeWithinItsRange)
{
    launch("a");
    for (const int refused : {0, -1, 300001, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(request(1, RequestCode::ExtendTimeout, {}, refused), EINVAL) << refused;
        EXPECT_TRUE(lastSays("1 to 300000 ms"));
    }
    EXPECT_EQ(state().windowCreationTimeout, 0ms);
    for (const int granted : {1, 300000}) {
        EXPECT_EQ(request(1, RequestCode::ExtendTimeout, {}, granted), 0) << granted;
        EXPECT_EQ(state().windowCreationTimeout, std::chrono::milliseconds(granted));
    }
}

TEST_F(NavigatorRequests, minimisingMakesTheMainGroupAThumbnail)
{
    launch("a");
    EXPECT_EQ(request(1, RequestCode::RawWrite, "msg::maximizeWindow\n"), ENOTSUP);
    EXPECT_TRUE(lastSays("maximizeWindow"));
    EXPECT_EQ(request(1, RequestCode::RawWrite, "msg::minimizeWindow"), EINVAL);
    port.rooms = {{1, 2}};
    EXPECT_EQ(request(1, RequestCode::RawWrite, "msg::minimizeWindow\n"), EAGAIN);
    EXPECT_EQ(sent(), Lines());

    port.rooms.clear();
    EXPECT_EQ(request(1, RequestCode::RawWrite, "msg::minimizeWindow\n"), 0);
    EXPECT_EQ(sent(), Lines({"1: inactive a/1", "1: window 1 a/1", "1: app 1"}));
    EXPECT_EQ(request(1, RequestCode::RawWrite, "msg::minimizeWindow\n"), 0);
    EXPECT_EQ(sent(), Lines());
}

TEST_F(NavigatorRequests, closePromptMustBeUtf8)
{
    launch("a");
    EXPECT_EQ(request(1, RequestCode::SetClosePrompt, "\xff"), EINVAL);
    EXPECT_EQ(request(1, RequestCode::SetClosePrompt, "", 0, "\xc3"), EINVAL);
    EXPECT_FALSE(state().hasClosePrompt);

    EXPECT_EQ(request(1, RequestCode::SetClosePrompt, "\xc3\xa4"), 0);
    EXPECT_EQ(state().promptTitle, "\xc3\xa4");
    EXPECT_EQ(request(1, RequestCode::SetClosePrompt), 0); // both may be empty
    EXPECT_TRUE(state().hasClosePrompt);
}

TEST_F(NavigatorRequests, failureOnPurposeComesBeforeAnythingElse)
{
    launch("a");
    navigator.failRequests(RequestCode::CloseWindow, EBUSY, 2);
    navigator.failRequests(RequestCode::ExtendTimeout, EIO, 0);
    port.traces.clear();

    EXPECT_EQ(request(1, RequestCode::CloseWindow), EBUSY);
    EXPECT_EQ(request(1, RequestCode::ExtendTimeout, {}, -1), EIO);
    EXPECT_EQ(port.traces, Lines({"0 101 a|request close-window: EBUSY, made to fail on purpose",
                                  "0 101 a|request extend-timeout -1: EIO, made to fail on purpose"}));
    EXPECT_EQ(request(1, RequestCode::CloseWindow), EBUSY);
    EXPECT_EQ(request(1, RequestCode::ExtendTimeout, {}, 500), EIO);
    EXPECT_EQ(state().windowCreationTimeout, 0ms);
    EXPECT_EQ(sent(), Lines());

    navigator.failRequests(RequestCode::ExtendTimeout, 0, 0);
    EXPECT_EQ(request(1, RequestCode::ExtendTimeout, {}, 500), 0);
    EXPECT_EQ(request(1, RequestCode::CloseWindow), 0);
    EXPECT_EQ(sent(), Lines({"1: app 2", "1: exit"}));
}

} // namespace kelp::device
