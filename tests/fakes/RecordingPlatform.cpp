// SPDX-License-Identifier: Apache-2.0
// See RecordingPlatform.h. Each thread notes its calls in a log of its own; a counter tells their order.

#include "Recorder.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>

namespace kelp::test {

namespace {

using Calls = std::vector<std::pair<std::uint64_t, std::string>>;

struct Log {
    std::mutex mutex; // guards calls
    Calls calls;
};

struct Answer {
    std::string function;
    std::int64_t result;
    int error;
    int countdown; // calls until it is given
    bool always;
};

struct State {
    std::mutex mutex; // guards the rest; taken before a log's
    std::vector<std::shared_ptr<Log>> logs;
    std::vector<Answer> answers;
    std::map<std::string, std::string> texts;
    std::map<std::string, std::function<void()>> actions;
};

std::atomic<std::uint64_t> s_order{0};
std::atomic<bool> s_scripted{
    false}; // whether there are answers or actions: without, calls take no common lock

// Made when it is first needed, which can be before this library's own start, and never destroyed: threads may end after
// static objects have gone.
State &state()
{
    static State &made = *new State;
    return made;
}

std::shared_ptr<Log> makeLog()
{
    const std::lock_guard lock(state().mutex);
    return state().logs.emplace_back(std::make_shared<Log>());
}

// The answer to a call, its result and errno, where the test has set one.
std::optional<std::pair<std::int64_t, int>> takeAnswer(const std::string &function)
{
    const std::lock_guard lock(state().mutex);
    std::optional<std::pair<std::int64_t, int>> given;
    for (Answer &answer : state().answers) {
        const bool isMeant = answer.function == function || answer.function == RecordingPlatform::ANY;
        if (isMeant && (answer.always || --answer.countdown == 0)) {
            given = std::pair(answer.result, answer.error);
        }
    }
    return given;
}

void act(const std::string &function)
{
    std::function<void()> action;
    {
        const std::lock_guard lock(state().mutex);
        const auto found = state().actions.find(function);
        action = found == state().actions.end() ? [] {} : found->second;
    }
    action();
}

bool onlyFetchesEvents(const std::string &call)
{
    return call.starts_with("tarn_event_") || call.starts_with("tarn_queue_") ||
           call.starts_with("tarn_next_event") || call.starts_with("navigator_event_get_");
}

} // namespace

std::optional<std::int64_t> note(const std::string &function, const std::string &arguments, bool canFail)
{
    const int before = errno;
    thread_local const std::shared_ptr<Log> log = makeLog();
    {
        const std::lock_guard lock(log->mutex);
        log->calls.emplace_back(s_order.fetch_add(1, std::memory_order_relaxed),
                                function + '(' + arguments + ')');
    }
    std::optional<std::pair<std::int64_t, int>> answer;
    if (s_scripted.load(std::memory_order_relaxed)) {
        act(function);
        answer = canFail ? takeAnswer(function) : answer;
    }
    errno = answer && answer->second ? answer->second : before;
    return answer ? std::optional(answer->first) : std::nullopt;
}

char *handedOut(const std::string &function)
{
    const std::lock_guard lock(state().mutex);
    const auto found = state().texts.find(function);
    return found == state().texts.end() ? nullptr : ::strdup(found->second.c_str());
}

void RecordingPlatform::reset()
{
    const std::lock_guard lock(state().mutex);
    state().answers.clear();
    state().texts.clear();
    state().actions.clear();
    s_scripted = false;
    setSystemPage(nullptr);
    for (const auto &log : state().logs) {
        const std::lock_guard logLock(log->mutex);
        log->calls.clear();
    }
}

std::vector<std::string> RecordingPlatform::calls()
{
    const std::lock_guard lock(state().mutex);
    Calls all;
    for (const auto &log : state().logs) {
        const std::lock_guard logLock(log->mutex);
        all.insert(all.end(), log->calls.begin(), log->calls.end());
    }
    std::sort(all.begin(), all.end());
    std::vector<std::string> calls;
    std::transform(all.begin(), all.end(), std::back_inserter(calls),
                   [](auto &entry) { return entry.second; });
    return calls;
}

std::string RecordingPlatform::takeRequests()
{
    std::string requests;
    for (const std::string &call : calls()) {
        if (!onlyFetchesEvents(call)) {
            requests += (requests.empty() ? "" : " ") + call;
        }
    }
    reset();
    return requests;
}

void RecordingPlatform::answer(const std::string &function, std::int64_t result, int error, int nth)
{
    const std::lock_guard lock(state().mutex);
    state().answers.push_back({function, result, error, nth, nth == ALWAYS});
    s_scripted = true;
}

void RecordingPlatform::setText(const std::string &function, const std::string &text)
{
    const std::lock_guard lock(state().mutex);
    state().texts[function] = text;
}

void RecordingPlatform::onCall(const std::string &function, std::function<void()> action)
{
    const std::lock_guard lock(state().mutex);
    state().actions[function] = std::move(action);
    s_scripted = true;
}

} // namespace kelp::test
