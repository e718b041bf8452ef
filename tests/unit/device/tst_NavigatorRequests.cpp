// SPDX-License-Identifier: Apache-2.0
// What applications ask of the navigator, but for their exit: what each request does, and the errno it fails
// with.
#include "NavigatorFixture.h"

#include "device/catalogue/Catalogue.h"

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
          RequestCode::PooledResponse, RequestCode::RawWrite, RequestCode::OrientationCheckResponse,
          RequestCode::DoneOrientation, RequestCode::SetOrientation}) {
        EXPECT_EQ(request(process, code, "msg::minimizeWindow\n", 500), EINVAL) << static_cast<int>(code);
        EXPECT_TRUE(lastSays("is for applications"));
    }
    EXPECT_EQ(request(2, RequestCode::CloseWindow), EINVAL);
    EXPECT_EQ(navigator.nextDeadline(), std::nullopt);
}

TEST_F(NavigatorRequests, everyRequestOfTheCatalogueIsOffered)
{
    launch("a");
    for (const RequestSpec &spec : requests()) {
        const int error = request(1, spec.code, "x");
        EXPECT_TRUE(error == 0 || error == EINVAL || error == EPERM) << spec.name << ": " << last.text;
    }
    EXPECT_EQ(request(1, static_cast<RequestCode>(99)), EINVAL);
    EXPECT_TRUE(lastSays("no request with the code 99"));
}

TEST_F(NavigatorRequests, badgeLockAndSwipeStartStayAsLastSet)
{
    const ProcessId process = launch("a");
    struct {
        RequestCode code;
        int number, error;
        bool badge, lock, swipeStart; // afterwards
    } const wishes[] = {
        {RequestCode::SetBadge, 1, EINVAL, false, false, false},
        {RequestCode::SetBadge, 0, 0, true, false, false},
        {RequestCode::SetBadge, -1, EINVAL, true, false, false},
        {RequestCode::RotationLock, 1, 0, true, true, false},
        {RequestCode::RequestSwipeStart, 0, 0, true, true, true},
        {RequestCode::ClearBadge, 0, 0, false, true, true},
        {RequestCode::RotationLock, 0, 0, false, false, true},
        {RequestCode::StopSwipeStart, 0, 0, false, false, false},
    };
    for (const auto &wish : wishes) {
        EXPECT_EQ(request(process, wish.code, {}, wish.number), wish.error) << last.text;
        EXPECT_EQ(state().hasBadge, wish.badge);
        EXPECT_EQ(state().isOrientationLocked, wish.lock);
        EXPECT_EQ(state().wantsSwipeStart, wish.swipeStart);
    }
    EXPECT_EQ(sent(), Lines());
}

TEST_F(NavigatorRequests, swipeIsForTheApplicationInFrontAndStartsWhereThatWasRequested)
{
    EXPECT_EQ(event("swipe-down"), EPERM);
    launch("a");
    const ProcessId front = launch("b");
    EXPECT_EQ(event("swipe-down"), 0);
    request(1, RequestCode::RequestSwipeStart); // not in front
    EXPECT_EQ(event("swipe-down", {{"app", "b"}}), 0);
    EXPECT_EQ(event("swipe-down", {{"app", "a"}}), EPERM);
    EXPECT_TRUE(lastSays("for b"));
    EXPECT_EQ(sent(), Lines({"2: swipe down", "2: swipe down"}));

    request(front, RequestCode::RequestSwipeStart);
    port.rooms = {{front, 1}};
    EXPECT_EQ(event("swipe-down"), EAGAIN); // not half of it
    port.rooms.clear();
    EXPECT_EQ(event("swipe-down"), 0);
    request(front, RequestCode::StopSwipeStart);
    EXPECT_EQ(event("swipe-down"), 0);
    EXPECT_EQ(sent(), Lines({"2: swipe start", "2: swipe down", "2: swipe down"}));
    event("exit", {{"app", "b"}});
    EXPECT_EQ(event("swipe-down"), EPERM);
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
