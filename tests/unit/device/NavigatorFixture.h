// SPDX-License-Identifier: Apache-2.0
// A navigator on a frozen clock with a port that records, for all tests of the navigator. What is sent is
// written down in short: "1: window 0 a/1" for process 1, "channel 7: app 0" for one channel, "1: signal 15".
#pragma once

#include "device/navigator/Navigator.h"

#include <gtest/gtest.h>
#include <navigator/navigator.h>

#include <cerrno>
#include <map>
#include <set>

namespace kelp::device {

using Lines = std::vector<std::string>;
using Arguments = std::vector<std::pair<std::string, std::string>>;
using namespace std::chrono_literals;

class RecordingPort : public NavigatorPort
{
public:
    void send(ProcessId process, const link::Event &event) override
    {
        if (rooms.contains(process)) {
            --rooms[process];
        }
        lines.push_back(std::to_string(process) + ": " + shortText(event));
    }
    void sendTo(ChannelId channel, const link::Event &event) override
    {
        lines.push_back("channel " + std::to_string(channel) + ": " + shortText(event));
    }
    bool takesEvents(ProcessId process) override { return !closed.contains(process); }
    bool hasRoom(ProcessId process, std::size_t events) override
    {
        return !rooms.contains(process) || rooms[process] >= events;
    }
    void signal(ProcessId process, int signal) override
    {
        lines.push_back(std::to_string(process) + ": signal " + std::to_string(signal));
    }
    void trace(const TraceEntry &entry) override
    {
        const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(entry.time - start);
        traces.push_back(std::to_string(time.count()) + ' ' + std::to_string(entry.pid) + ' ' +
                         entry.process + '|' + entry.text);
    }

    Label label(pid_t pid) override { return labels[pid]; }

    Time start{0};
    std::map<pid_t, Label> labels;
    std::map<ProcessId, std::size_t>
        rooms;                  // for how many more events; a process that is not here has no bound
    std::set<ProcessId> closed; // without a channel
    Lines lines;
    Lines traces; // "milliseconds pid application|text", the time since start

private:
    static std::string shortText(const link::Event &event)
    {
        switch (event.code) {
        case NAVIGATOR_EXIT:
            return "exit";
        case NAVIGATOR_WINDOW_STATE:
            return "window " + std::to_string(event.windowState) + ' ' + event.groupId;
        case NAVIGATOR_WINDOW_ACTIVE:
            return "active " + event.groupId;
        case NAVIGATOR_WINDOW_INACTIVE:
            return "inactive " + event.groupId;
        case NAVIGATOR_APP_STATE:
            return "app " + std::to_string(event.appState);
        case NAVIGATOR_LOW_MEMORY:
            return "memory " + std::to_string(event.severity);
        case NAVIGATOR_POOLED:
            return "pooled " + event.id;
        case NAVIGATOR_ORIENTATION_CHECK:
            return "check " + event.id + ' ' + std::to_string(event.angle);
        case NAVIGATOR_ORIENTATION_SIZE:
            return "size " + event.id + ' ' + std::to_string(event.width) + ' ' +
                   std::to_string(event.height);
        case NAVIGATOR_ORIENTATION:
            return "turn " + event.id + ' ' + std::to_string(event.angle);
        case NAVIGATOR_ORIENTATION_DONE:
            return "done " + std::to_string(event.angle);
        case NAVIGATOR_SWIPE_START:
            return "swipe start";
        case NAVIGATOR_SWIPE_DOWN:
            return "swipe down";
        default:
            return "unexpected " + std::to_string(event.code);
        }
    }
};

class NavigatorFixture : public testing::Test
{
protected:
    explicit NavigatorFixture(const Settings &settings = {}) : navigator(clock, settings, port)
    {
        clock.setSpeed(0);
        clock.stepTo(1h); // away from what has passed since the clock was made
        port.start = clock.now();
    }

    // The process's number: 1, 2, ... Its pid is 100 more. What it is sent is forgotten.
    ProcessId launch(const std::string &name)
    {
        const ProcessId process = navigator.connected(static_cast<pid_t>(101 + launches++), name);
        navigator.openedEvents(process, 1);
        port.lines.clear();
        port.traces.clear();
        return process;
    }

    int event(const std::string &name, const Arguments &arguments = {})
    {
        last = navigator.event(name, arguments);
        return last.error;
    }

    int request(ProcessId process, link::RequestCode code, const std::string &first = {}, int number = 0,
                const std::string &second = {})
    {
        last = navigator.request(process, {code, number, first, second});
        return last.error;
    }

    void step(Duration duration)
    {
        clock.stepTo(clock.now() + duration);
        navigator.expireDeadlines();
    }

    Lines sent() { return std::exchange(port.lines, {}); }

    ApplicationState state(std::size_t index = 0) const { return navigator.applications().at(index); }

    testing::AssertionResult lastSays(const std::string &words) const
    {
        if (last.text.find(words) != std::string::npos) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "\"" << last.text << "\" does not say \"" << words << "\"";
    }

    Clock clock;
    RecordingPort port;
    Navigator navigator;
    Outcome last;
    unsigned launches = 0;
};

} // namespace kelp::device
