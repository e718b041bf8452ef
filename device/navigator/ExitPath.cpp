// SPDX-License-Identifier: Apache-2.0
// Begins an exit, prolongs it, and acts when its deadlines are reached. The navigator calls the last two.
#include "ExitPath.h"

#include "NavigatorEvents.h"

#include <cerrno>
#include <csignal>

namespace kelp::device {

Outcome ExitPath::begin(Application &application)
{
    if (application.isStopping()) {
        return {0, "nothing changes: " + application.id() + " is exiting already"};
    }
    if (application.isPromptShown()) {
        application.showPrompt(false);
        _journal.note(application, "close prompt withdrawn: it exits");
    }
    const Time end = _clock.now() + _settings.grace;
    _journal.note(application, "exits: it has until " + secondsText(end));
    _delivery.deliverWhatFits(
        {{&application, appStateEvent(NAVIGATOR_APP_STOPPING)}, {&application, exitEvent()}});
    _deadlines.set({end, application.process(), DeadlineKind::Terminate, {}});
    return {0, application.id() + " has " + secondsText(end - _clock.now()) + " to end"};
}

Outcome ExitPath::extend(Application &application)
{
    const std::optional<Time> pending = _deadlines.momentOf(application.process(), DeadlineKind::Terminate);
    if (!pending) {
        return {
            EINVAL,
            "no termination is pending: ask for more time between the exit event and the end of its grace"};
    }
    if (application.extended() + _settings.extension > _settings.extensionLimit) {
        return {EPERM, "all extensions together are at most " + secondsText(_settings.extensionLimit) +
                           ", and they are used up: end before " + secondsText(*pending)};
    }
    const Time end = *pending + _settings.extension;
    application.addExtension(_settings.extension);
    _deadlines.set({end, application.process(), DeadlineKind::Terminate, {}});
    _journal.note(application, "extension granted: it has until " + secondsText(end));
    return {0, application.id() + " has " + secondsText(end - _clock.now()) + " to end"};
}

void ExitPath::terminateReached(const Application &application)
{
    if (!_settings.endOverstaying) {
        _journal.note(application, "terminate reached: it overstays, and is left running");
        return;
    }
    _journal.note(application, "terminate reached: it overstays, SIGTERM sent");
    _port.signal(application.process(), SIGTERM);
    // From now, not from the deadline: the process gets its time to act on the signal, however late the clock
    // was.
    _deadlines.set({_clock.now() + _settings.killDelay, application.process(), DeadlineKind::Kill, {}});
}

void ExitPath::killReached(const Application &application)
{
    _journal.note(application, "kill reached: it is still there, SIGKILL sent");
    _port.signal(application.process(), SIGKILL);
}

} // namespace kelp::device
