// SPDX-License-Identifier: Apache-2.0
// The record of one connected process: an application once it has asked for events, with its window groups,
// its state and what it has set. What it is told, it is: its state changes by the events for it and in no
// other way.
#pragma once

#include "Navigator.h"
#include "WindowGroup.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelp::device {

// What a person is asked before the application is closed.
struct ClosePrompt {
    std::string title;   // UTF-8, as the application set it
    std::string message; // likewise
    bool shown = false;  // a person has been asked and has not answered yet
};

// How the application takes the screen to be held: upright, until it is told otherwise.
struct ToldOrientation {
    std::string rotation; // the id under which it was told last; empty: never
    int angle = 0;        // degrees
};

class Application
{
public:
    // name: any text, made fit for an id.
    Application(ProcessId process, pid_t pid, const std::string &name);

    ProcessId process() const { return _process; }
    pid_t pid() const { return _pid; }
    const std::string &name() const { return _name; } // fit for an id, but not unique

    // It is an application from now on, in the background and without a window group.
    void launch(const std::string &id) { _id = id; }
    bool isLaunched() const { return !_id.empty(); }
    const std::string &id() const { return _id; } // empty: no application yet

    // As the package has it; kept as it can be shown.
    void setLabel(const Label &label);

    int state() const { return _state; } // enum navigator_app_state
    bool isStopping() const { return _state == NAVIGATOR_APP_STOPPING; }

    // In the order of their opening; the first is the main one. Pointers are valid until a group is added or
    // removed.
    const std::vector<WindowGroup> &groups() const { return _groups; }
    const WindowGroup *findGroup(std::string_view id) const;
    const WindowGroup *fullScreenGroup() const; // there is one at most
    void addGroup(const std::string &id);
    void removeGroup(const std::string &id);

    // The numbers that name the groups for which no id was given; each is used once.
    std::string groupId(unsigned number) const { return _id + '/' + std::to_string(number); }
    unsigned lastGroupNumber() const { return _lastGroupNumber; }
    void useGroupNumber(unsigned number) { _lastGroupNumber = number; }

    // Makes the change that an event tells of.
    void apply(const link::Event &event);

    const std::optional<ClosePrompt> &closePrompt() const { return _closePrompt; }
    bool isPromptShown() const { return _closePrompt && _closePrompt->shown; }
    void setClosePrompt(const std::string &title, const std::string &message); // stays shown, if it was
    void clearClosePrompt() { _closePrompt.reset(); }
    void showPrompt(bool shown); // without effect where no prompt is set

    void setWindowCreationTimeout(Duration timeout) { _windowCreationTimeout = timeout; }

    bool hasBadge() const { return _hasBadge; }
    void setBadge(bool shown) { _hasBadge = shown; }
    const ToldOrientation &orientation() const { return _orientation; }
    bool isOrientationLocked() const { return _isOrientationLocked; }
    void lockOrientation(bool locked) { _isOrientationLocked = locked; }
    bool wantsSwipeStart() const { return _wantsSwipeStart; }
    void wantSwipeStart(bool wanted) { _wantsSwipeStart = wanted; }

    // The sum of the extensions that the exit was granted.
    Duration extended() const { return _extended; }
    void addExtension(Duration extension) { _extended += extension; }

    // The state as others see it, but for the deadlines and a rotation.
    ApplicationState describe() const;

private:
    WindowGroup *groupOf(const link::Event &event);

    ProcessId _process;
    pid_t _pid;
    std::string _name;
    std::string _id;
    Label _label;
    int _state = NAVIGATOR_APP_BACKGROUND;
    std::vector<WindowGroup> _groups;
    unsigned _lastGroupNumber = 0;
    std::optional<ClosePrompt> _closePrompt;
    Duration _windowCreationTimeout{0};
    bool _hasBadge = false;
    ToldOrientation _orientation;
    bool _isOrientationLocked = false;
    bool _wantsSwipeStart = false;
    Duration _extended{0};
};

} // namespace kelp::device
