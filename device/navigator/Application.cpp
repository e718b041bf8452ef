// SPDX-License-Identifier: Apache-2.0
// The record's changes, and how a process's name becomes one that is fit for an id. Called by the navigator's
// parts.
#include "Application.h"

#include "ClientText.h"

#include <algorithm>
#include <cassert>

namespace kelp::device {

namespace {

// Leaves room for the number of the application and of a window group within an id's bound of 255 bytes.
constexpr std::size_t MAX_NAME_BYTES = 200;

bool isNameCharacter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || character == '.' || character == '_' || character == '-';
}

// The characters of text that an id may have. It starts with neither a dash nor a dot, so that it is neither
// taken for an option of a command nor for a hidden file or a parent directory.
std::string fitForId(const std::string &text)
{
    std::string name;
    std::copy_if(text.begin(), text.end(), std::back_inserter(name), isNameCharacter);
    name.erase(0, name.find_first_not_of("-."));
    name = name.substr(0, MAX_NAME_BYTES);
    return name.empty() ? "application" : name;
}

} // namespace

Application::Application(ProcessId process, pid_t pid, const std::string &name)
    : _process(process),
      _pid(pid),
      _name(fitForId(name))
{}

const WindowGroup *Application::findGroup(std::string_view id) const
{
    const auto group = std::find_if(_groups.begin(), _groups.end(),
                                    [id](const WindowGroup &candidate) { return candidate.id == id; });
    return group == _groups.end() ? nullptr : &*group;
}

const WindowGroup *Application::fullScreenGroup() const
{
    const auto group = std::find_if(_groups.begin(), _groups.end(),
                                    [](const WindowGroup &candidate) { return candidate.isFullScreen(); });
    return group == _groups.end() ? nullptr : &*group;
}

void Application::setLabel(const Label &label)
{
    _label = {onOneLine(label.title), onOneLine(label.version)};
}

void Application::addGroup(const std::string &id)
{
    assert(!findGroup(id));
    _groups.push_back({id});
}

void Application::removeGroup(const std::string &id)
{
    std::erase_if(_groups, [&id](const WindowGroup &group) { return group.id == id; });
}

WindowGroup *Application::groupOf(const link::Event &event)
{
    const WindowGroup *group = findGroup(event.groupId);
    assert(group); // the navigator tells of groups that it keeps only
    return &_groups[static_cast<std::size_t>(group - _groups.data())];
}

void Application::apply(const link::Event &event)
{
    switch (event.code) {
    case NAVIGATOR_APP_STATE:
        _state = event.appState;
        break;
    case NAVIGATOR_WINDOW_STATE:
        groupOf(event)->windowState = event.windowState;
        break;
    case NAVIGATOR_WINDOW_ACTIVE:
    case NAVIGATOR_WINDOW_INACTIVE:
        groupOf(event)->active = event.code == NAVIGATOR_WINDOW_ACTIVE;
        break;
    case NAVIGATOR_ORIENTATION:
        _orientation = {event.id, event.angle};
        break;
    default:
        break; // changes nothing that the record holds
    }
}

void Application::setClosePrompt(const std::string &title, const std::string &message)
{
    _closePrompt = ClosePrompt{title, message, isPromptShown()};
}

void Application::showPrompt(bool shown)
{
    if (_closePrompt) {
        _closePrompt->shown = shown;
    }
}

ApplicationState Application::describe() const
{
    ApplicationState state;
    state.id = _id;
    state.pid = _pid;
    state.label = _label;
    state.appState = _state;
    for (const WindowGroup &group : _groups) {
        state.groups.push_back({group.id, group.windowState, group.active});
    }
    state.hasClosePrompt = _closePrompt.has_value();
    if (_closePrompt) {
        state.promptTitle = _closePrompt->title;
        state.promptMessage = _closePrompt->message;
        state.promptShown = _closePrompt->shown;
    }
    state.windowCreationTimeout = _windowCreationTimeout;
    state.hasBadge = _hasBadge;
    state.isOrientationLocked = _isOrientationLocked;
    state.wantsSwipeStart = _wantsSwipeStart;
    return state;
}

} // namespace kelp::device
