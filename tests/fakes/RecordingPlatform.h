// SPDX-License-Identifier: Apache-2.0
// A platform for tests, in place of the real one: it notes every call that is made of it, answers as the test has
// told it to, and has queues to which the test posts events. It knows no device and decides nothing by itself: files
// are the host's, also below "/pps/", and the text codec is the real one, which notes nothing. Of tarn_event_create()
// and tarn_event_push(), which libkelp does not call, it has no more than the note and the answer.
//
//     RecordingPlatform::answer("navigator_close_window", TARN_FAILURE, EPERM);
//     ThreadQueue::ofThisThread().postExit();
//     ... the code under test runs ...
//     RecordingPlatform::takeRequests() is "navigator_close_window()"
//
// Threads: all of it may be used from any thread. Noting a call does not order it with those of other threads, so
// that the thread sanitizer still sees what the code under test leaves unordered.
#pragma once

#include <navigator/navigator.h>
#include <sys/syspage.h>
#include <tarn/tarn.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kelp::test {

class Queue;

// What the readers of a navigator event give. Numbers that an event does not have are -1, texts empty.
struct Fields {
    int windowState = -1;
    int appState = -1;
    int severity = -1;
    int angle = -1;
    int width = -1;
    int height = -1;
    std::string groupId = {};
    std::string id = {};
};

// The queue of one thread, for any thread to post to. Outlives the thread.
class ThreadQueue
{
public:
    using Text = const std::string &;

    static ThreadQueue ofThisThread();

    std::size_t pending() const; // events that nobody has taken yet

    // Each returns whether the event was taken: only while a tarn_initialize() of the thread is in force.
    bool post(int domain, unsigned int code, const Fields &fields = {}) const;
    bool postExit() const { return postOwn(NAVIGATOR_EXIT, {}); }
    bool postWindowState(int state, Text groupId) const
    {
        return postOwn(NAVIGATOR_WINDOW_STATE, {.windowState = state, .groupId = groupId});
    }
    bool postSwipeDown() const { return postOwn(NAVIGATOR_SWIPE_DOWN, {}); }
    bool postSwipeStart() const { return postOwn(NAVIGATOR_SWIPE_START, {}); }
    bool postLowMemory(int severity) const { return postOwn(NAVIGATOR_LOW_MEMORY, {.severity = severity}); }
    bool postOrientationCheck(Text id, int angle) const
    {
        return postOwn(NAVIGATOR_ORIENTATION_CHECK, {.angle = angle, .id = id});
    }
    bool postOrientation(Text id, int angle) const
    {
        return postOwn(NAVIGATOR_ORIENTATION, {.angle = angle, .id = id});
    }
    bool postOrientationDone(int angle) const
    {
        return postOwn(NAVIGATOR_ORIENTATION_DONE, {.angle = angle});
    }
    bool postOrientationSize(Text id, int width, int height) const
    {
        return postOwn(NAVIGATOR_ORIENTATION_SIZE, {.width = width, .height = height, .id = id});
    }
    bool postWindowActive(Text groupId) const
    {
        return postOwn(NAVIGATOR_WINDOW_ACTIVE, {.groupId = groupId});
    }
    bool postWindowInactive(Text groupId) const
    {
        return postOwn(NAVIGATOR_WINDOW_INACTIVE, {.groupId = groupId});
    }
    bool postAppState(int state) const { return postOwn(NAVIGATOR_APP_STATE, {.appState = state}); }
    bool postPooled(Text id) const { return postOwn(NAVIGATOR_POOLED, {.id = id}); }

private:
    explicit ThreadQueue(std::shared_ptr<Queue> queue) : _queue(std::move(queue)) {}
    bool postOwn(unsigned int code, const Fields &fields) const; // of the navigator's domain

    std::shared_ptr<Queue> _queue;
};

class RecordingPlatform
{
public:
    // Forgets all calls and everything that the test has set. Queues and their events stay.
    static void reset();

    // ---- What was called, in order, as text: navigator_set_close_prompt("title", "message") ----

    static std::vector<std::string> calls();
    // Without those that only fetch and read events: separated by spaces. Then resets.
    static std::string takeRequests();

    // ---- What happens at the calls to come; by default all succeed ----

    static constexpr char ANY[] = "*"; // every function that can fail
    static constexpr int ALWAYS = 0;

    // The nth call of a function from now on, or each, has no effect and returns result, with errno unless error is
    // 0. What was set last prevails.
    static void answer(const std::string &function, std::int64_t result, int error, int nth = ALWAYS);
    // The text that a function hands out, most for their callers to free; without it, NULL, or no asset's variant.
    static void setText(const std::string &function, const std::string &text);
    // The system page, until it is set anew or reset. The test's own; null: one without any entries.
    static void setSystemPage(const syspage *page);
    // Runs at each call of a function, on its thread.
    static void onCall(const std::string &function, std::function<void()> action);
};

} // namespace kelp::test
