// SPDX-License-Identifier: Apache-2.0
// From a command's texts to the part that carries it out, and the roads of the close prompt, which only a
// person answers.
#include "PersonEvents.h"

#include "ClientText.h"
#include "NavigatorEvents.h"

#include <cerrno>

namespace kelp::device {

namespace {

Outcome refuseUnknown(const std::string &name)
{
    std::string known;
    for (const EventSpec &spec : events()) {
        known += (known.empty() ? "" : ", ") + std::string(spec.name);
    }
    return {EINVAL, "there is no event " + inQuotes(name) + ": choose one of " + known};
}

Outcome refuseAnswer(const Application &application)
{
    return {EPERM, application.id() + " shows no close prompt: it does after close, if it has set one"};
}

} // namespace

Outcome PersonEvents::handle(const std::string &name, const ArgumentTexts &texts)
{
    const EventSpec *event = findEvent(name);
    if (!event) {
        return refuseUnknown(name);
    }
    const auto checked = checkArguments(*event, texts);
    if (const auto *refusal = std::get_if<Outcome>(&checked)) {
        return *refusal;
    }
    const EventArguments &arguments = std::get<EventArguments>(checked);
    if (const std::optional<Outcome> outcome = handleForDevice(event->kind, arguments)) {
        return *outcome;
    }
    const auto chosen = chooseTarget(_applications, arguments);
    if (const auto *refusal = std::get_if<Outcome>(&chosen)) {
        return *refusal;
    }
    return handleForTarget(event->kind, std::get<Target>(chosen), arguments);
}

std::optional<Outcome> PersonEvents::handleForDevice(EventKind kind, const EventArguments &arguments)
{
    switch (kind) {
    case EventKind::LowMemory:
        return tellLowMemory(arguments);
    case EventKind::Rotate:
        return _rotation.turnDevice(arguments.angle);
    case EventKind::SwipeDown:
        return swipeDown(arguments);
    case EventKind::Screen:
        _screen.properties.size = arguments.size;
        return Outcome();
    case EventKind::Theme:
        _screen.properties.theme = arguments.theme;
        return Outcome();
    default:
        return std::nullopt;
    }
}

Outcome PersonEvents::handleForTarget(EventKind kind, const Target &target, const EventArguments &arguments)
{
    Application &application = *target.application;
    switch (kind) {
    case EventKind::FullScreen:
        return _windows.bringToFront(application, *target.group);
    case EventKind::Thumbnail:
        return _windows.stepBack(application, *target.group, NAVIGATOR_WINDOW_THUMBNAIL);
    case EventKind::Invisible:
        return _windows.stepBack(application, *target.group, NAVIGATOR_WINDOW_INVISIBLE);
    case EventKind::Activate:
    case EventKind::Deactivate:
        return _windows.setActive(application, *target.group, kind == EventKind::Activate);
    case EventKind::OpenGroup:
        return _windows.open(application, arguments.newGroup);
    case EventKind::CloseGroup:
        return _windows.close(application, *target.group);
    case EventKind::Pool:
        return _pooling.begin(application);
    case EventKind::Close:
        return close(application);
    case EventKind::Confirm:
        return confirm(application);
    case EventKind::Dismiss:
        return dismiss(application);
    case EventKind::Exit:
        return _exitPath.begin(application);
    case EventKind::LowMemory:
    case EventKind::Rotate:
    case EventKind::SwipeDown:
    case EventKind::Screen:
    case EventKind::Theme:
        break; // are not for one target
    }
    return {EINVAL, "the event is for the device"}; // cannot be: those have been handled
}

Outcome PersonEvents::swipeDown(const EventArguments &arguments)
{
    Application *application = _applications.inFront();
    if (!application) {
        return {EPERM, "no application is in front to be swiped: bring one there with fullscreen"};
    }
    if (arguments.app && *arguments.app != application->id()) {
        return {EPERM, inQuotes(*arguments.app) + " is not in front: a swipe is for " + application->id() +
                           ", which is"};
    }
    Plan plan;
    if (application->wantsSwipeStart()) {
        plan.push_back({application, swipeStartEvent()});
    }
    plan.push_back({application, swipeDownEvent()});
    return _delivery.deliver(plan);
}

Outcome PersonEvents::tellLowMemory(const EventArguments &arguments)
{
    std::vector<Application *> told = _applications.launched();
    if (arguments.app) {
        const auto chosen = chooseTarget(_applications, arguments);
        if (const auto *refusal = std::get_if<Outcome>(&chosen)) {
            return *refusal;
        }
        told = {std::get<Target>(chosen).application};
    }
    return told.empty() ? requireApplication(_applications) : _lowMemory.tell(told, arguments.severity);
}

Outcome PersonEvents::close(Application &application)
{
    if (application.isStopping()) {
        return {EPERM, application.id() + " is stopping: it is being closed already"};
    }
    if (!application.closePrompt()) {
        return _exitPath.begin(application);
    }
    if (application.isPromptShown()) {
        return {0, "nothing changes: the close prompt is shown already, answer it with confirm or dismiss"};
    }
    application.showPrompt(true);
    _journal.note(application, "close prompt shown: " + inQuotes(application.closePrompt()->title));
    return {0, "the close prompt is shown: answer it with confirm or dismiss"};
}

Outcome PersonEvents::confirm(Application &application)
{
    if (!application.isPromptShown()) {
        return refuseAnswer(application);
    }
    application.showPrompt(false);
    _journal.note(application, "close prompt confirmed");
    return _exitPath.begin(application);
}

Outcome PersonEvents::dismiss(Application &application)
{
    if (!application.isPromptShown()) {
        return refuseAnswer(application);
    }
    application.showPrompt(false);
    _journal.note(application, "close prompt dismissed");
    return {};
}

std::string describe(const std::string &name, const ArgumentTexts &arguments)
{
    std::string line = findEvent(name) ? name : inQuotes(name);
    for (const auto &[argument, text] : arguments) {
        line += ' ' + (isId(argument) ? argument : inQuotes(argument)) + '=' + inQuotes(text);
    }
    return line;
}

} // namespace kelp::device
