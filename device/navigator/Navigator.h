// SPDX-License-Identifier: Apache-2.0
// The navigator service: the shell of the device. It keeps every application with its window groups, states, prompts
// and deadlines, decides what follows from each request and each thing a person does, and says so through its port.
//
// It is pure: no descriptor, no process, no thread, no system clock. The device hands it a clock and a port.
#pragma once

#include "Screen.h"
#include "device/clock/Clock.h"
#include "platform/link/Message.h"

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kelp::device {

using ProcessId = std::uint32_t; // the device's own number for a connected process; from 1, never used twice
using ChannelId = std::uint32_t; // the device's own number for an event channel; from 1, never used twice

// The navigator's fixed times and rules.
struct Settings {
    Duration grace = std::chrono::seconds(3);                   // from the exit event to the process's end
    Duration extension = std::chrono::seconds(2);               // granted by one request for more time
    Duration extensionLimit = std::chrono::seconds(30);         // the most that all extensions may add up to
    Duration killDelay = std::chrono::seconds(1);               // from SIGTERM to SIGKILL
    Duration poolTimeout = std::chrono::seconds(5);             // for the answer to a pooling request
    Duration orientationCheckTimeout = std::chrono::seconds(2); // for the answer whether the screen may turn
    Duration orientationDoneTimeout = std::chrono::seconds(5);  // for the application to follow the screen
    Duration maxWindowCreation = std::chrono::minutes(5); // the longest window-creation time that is granted
    bool endOverstaying = true;                           // false: a process that overstays is only reported
};

// The result of a request or an event.
struct Outcome {
    int error = 0;    // 0, or an errno
    std::string text; // a result, or the reason of the failure in words that say what to do
};

// One line of the device's trace.
struct TraceEntry {
    Time time{0};
    pid_t pid = 0;       // 0: the device itself
    std::string process; // the application's id, or empty
    std::string text;    // what happened, with its result
};

// What a person calls an application, as its package says. Any texts; empty: it says nothing.
struct Label {
    std::string title;
    std::string version;
};

// What the navigator decides, carried out by the device. Called from within the navigator's operations; must not call
// back into it.
class NavigatorPort
{
public:
    virtual ~NavigatorPort() = default;
    // An event for every channel of a process, or for one channel.
    virtual void send(ProcessId process, const link::Event &event) = 0;
    virtual void sendTo(ChannelId channel, const link::Event &event) = 0;
    // Whether the process has an open channel. One that has none keeps its state and gets no events.
    virtual bool takesEvents(ProcessId process) = 0;
    // Whether a channel of the process can take that many more events, or it has none. One that cannot, while another
    // does, is closed at what it does not take: a thread that does not read keeps nothing from the others.
    virtual bool hasRoom(ProcessId process, std::size_t events) = 0;
    // Sends a signal to a process.
    virtual void signal(ProcessId process, int signal) = 0;
    virtual void trace(const TraceEntry &entry) = 0;
    // What a process that becomes an application is called.
    virtual Label label(pid_t pid) = 0;
};

// The state as others see it: plain data, a copy.
struct DeadlineState {
    std::string name; // "terminate", "kill", "pool", "orientation-check", "orientation-done"
    std::string id;   // of the request that is awaited, or empty
    Duration remaining{0};
};
struct WindowGroupState {
    std::string id;
    int windowState = 0; // enum navigator_window_state
    bool active = false;
};
struct RotationState {
    std::string id;
    int angle = 0;          // degrees that the screen is to turn to, or has turned to
    bool isTurning = false; // it has been accepted, and the application is following; else it is being asked
};
struct ApplicationState {
    std::string id; // the application's name on this device
    pid_t pid = 0;
    Label label;                          // made fit to be shown: UTF-8 on one line, within a bound
    int appState = 0;                     // enum navigator_app_state
    std::vector<WindowGroupState> groups; // the first is the main one
    bool hasClosePrompt = false;
    std::string promptTitle, promptMessage;
    bool promptShown = false;          // a person has been asked and has not answered yet
    Duration windowCreationTimeout{0}; // 0: never set
    std::vector<DeadlineState> deadlines;
    bool hasBadge = false; // the splat
    bool isOrientationLocked = false;
    bool wantsSwipeStart = false;
    std::optional<RotationState> rotation; // under way with it; of all applications, one has it at most
};

// How often a request has been made, by all processes, since the device started.
struct RequestCount {
    unsigned made = 0;
    unsigned refused = 0; // of these, with whatever errno

    bool operator==(const RequestCount &) const = default;
};
using RequestCounts = std::map<link::RequestCode, RequestCount>; // without those that were never made

class Navigator
{
public:
    Navigator(const Clock &clock, const Settings &settings, NavigatorPort &port,
              const DeviceProperties &properties = {});
    ~Navigator();
    Navigator(const Navigator &) = delete;
    Navigator &operator=(const Navigator &) = delete;

    // A process has connected. It is no application yet. name is any text, made fit for an id here.
    ProcessId connected(pid_t pid, const std::string &name);

    // A thread of the process has opened an event channel. The process's first makes it an application and launches
    // it; a later one is told the present state.
    void openedEvents(ProcessId process, ChannelId channel);

    // The process's connection is closed, or the process has ended.
    void disconnected(ProcessId process);

    // A request of a process.
    Outcome request(ProcessId process, const link::Request &request);

    // Something a person or a test causes: a name from the catalogue, and its arguments.
    Outcome event(const std::string &name, const std::vector<std::pair<std::string, std::string>> &arguments);

    // Makes the next requests with that code fail with an errno: times of them, or all from now on with times 0.
    // error 0 ends that.
    void failRequests(link::RequestCode code, int error, unsigned times);

    // The device's memory pressure has come to a severity (enum navigator_severity): every application is told when
    // it changes, and one that launches while it is not clear. Nothing until it has been set.
    void setMemorySeverity(int severity);
    std::optional<int> memorySeverity() const;

    // The device shuts down: every application is asked to exit.
    void exitAll();

    // The earliest deadline, if any; and what follows from those that the clock has reached, in their order.
    std::optional<Time> nextDeadline() const;
    void expireDeadlines();

    std::vector<ApplicationState> applications() const; // in the order of their launches
    std::size_t launches() const;                       // of applications, since the device started
    const RequestCounts &requestCounts() const;
    const Screen &screen() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace kelp::device
