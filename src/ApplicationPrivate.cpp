// SPDX-License-Identifier: Apache-2.0
// See ApplicationPrivate.h. The requests stand in ApplicationRequests.cpp.

#include "ApplicationPrivate.h"

#include "Messages.h"
#include "UIToolkitSupportPrivate.h"

#include <navigator/navigator.h>
#include <tarn/tarn.h>

namespace kelp {

ApplicationPrivate::ApplicationPrivate(Application *q)
    : QObject(q),
      q(q),
      toolkitSupport(new UIToolkitSupport(this)),
      autoExit(true)
{
    connect(toolkitSupport, &UIToolkitSupport::swipedDown, q, &Application::swipeDown);
    connect(toolkitSupport, &UIToolkitSupport::executionStateChanged, this,
            &ApplicationPrivate::executionStateChanged);
    connect(toolkitSupport, &UIToolkitSupport::uiStateChanged, this, &ApplicationPrivate::uiStateChanged);
    connect(toolkitSupport, &UIToolkitSupport::exit, this, &ApplicationPrivate::applicationExit);
    connect(toolkitSupport, &UIToolkitSupport::processStateChanged, this,
            &ApplicationPrivate::onProcessStateChanged);
    connect(toolkitSupport, &UIToolkitSupport::poolRequest, this, &ApplicationPrivate::onPoolRequest);
    (void)tarn_initialize(); // without a queue or a navigator, the application runs and receives no signal
    (void)navigator_request_events(NAVIGATOR_EVENTS_EXTENDED);
}

// The application object is half gone by now: q is only a QObject, and its dispatcher does not exist any more.
ApplicationPrivate::~ApplicationPrivate()
{
    tarn_shutdown();
}

void ApplicationPrivate::emitAwake(const QString &windowGroupID, bool emitApplicationSignal)
{
    Q_EMIT q->windowGroupAwake(windowGroupID);
    if (emitApplicationSignal) {
        Q_EMIT q->awake();
    }
}

void ApplicationPrivate::emitAsleep(const QString &windowGroupID, bool emitApplicationSignal)
{
    Q_EMIT q->windowGroupAsleep(windowGroupID);
    if (emitApplicationSignal) {
        Q_EMIT q->asleep();
    }
}

void ApplicationPrivate::emitInvisible(const QString &windowGroupID, bool emitApplicationSignal)
{
    Q_EMIT q->windowGroupInvisible(windowGroupID);
    if (emitApplicationSignal) {
        Q_EMIT q->invisible();
    }
}

void ApplicationPrivate::emitThumbnailed(const QString &windowGroupID, bool emitApplicationSignal)
{
    Q_EMIT q->windowGroupThumbnailed(windowGroupID);
    if (emitApplicationSignal) {
        Q_EMIT q->thumbnail();
    }
}

void ApplicationPrivate::emitFullscreen(const QString &windowGroupID, bool emitApplicationSignal)
{
    Q_EMIT q->windowGroupFullscreen(windowGroupID);
    if (emitApplicationSignal) {
        Q_EMIT q->fullscreen();
    }
}

void ApplicationPrivate::emitManualExit()
{
    Q_EMIT q->manualExit();
}

void ApplicationPrivate::quitApplication()
{
    QCoreApplication::quit();
}

void ApplicationPrivate::emitAutoExitChanged(bool newAutoExit)
{
    Q_EMIT q->autoExitChanged(newAutoExit);
}

void ApplicationPrivate::emitPooling(const QString &poolRequestID)
{
    Q_EMIT q->pooling(poolRequestID);
}

void ApplicationPrivate::setAutoExit(bool value)
{
    if (value == autoExit) {
        return;
    }
    autoExit = value;
    emitAutoExitChanged(value);
}

// Whether an update is the main window group's. One for another group gives the warning; its group signal is emitted
// all the same.
bool ApplicationPrivate::isForApplication(const QString &windowGroupID, const char *warning) const
{
    const QString mainID = toolkitSupport->windowGroupID();
    if (windowGroupID == mainID || windowGroupID == NO_GROUP_ID) {
        return true;
    }
    qWarning() << warning << Quoted{windowGroupID} << "!=" << Quoted{mainID};
    return false;
}

void ApplicationPrivate::executionStateChanged(ProcessExecutionState::Type newState,
                                               const QString &windowGroupID)
{
    const bool forApplication =
        isForApplication(windowGroupID, "ApplicationPrivate::executionStateChanged() - Filtering event ");
    switch (newState) {
    case ProcessExecutionState::Inactive:
        emitAsleep(windowGroupID, forApplication);
        break;
    case ProcessExecutionState::Active:
        emitAwake(windowGroupID, forApplication);
        break;
    case ProcessExecutionState::Unknown:
        qWarning() << "ApplicationPrivate::executionStateChanged() - Received update to unknown";
        break;
    default:
        qWarning() << "ApplicationPrivate::executionStateChanged() - Received unexpected state "
                   << int(newState);
    }
}

void ApplicationPrivate::uiStateChanged(ProcessUIState::Type newState, const QString &windowGroupID)
{
    const bool forApplication =
        isForApplication(windowGroupID, "ApplicationPrivate::uiStateChanged() - Filtering event ");
    switch (newState) {
    case ProcessUIState::Invisible:
        emitInvisible(windowGroupID, forApplication);
        break;
    case ProcessUIState::Thumbnail:
        emitThumbnailed(windowGroupID, forApplication);
        break;
    case ProcessUIState::FullScreen:
        emitFullscreen(windowGroupID, forApplication);
        break;
    case ProcessUIState::Unknown:
        qWarning() << "ApplicationPrivate::uiStateChanged() - Received update to unknown";
        break;
    default:
        qWarning() << "ApplicationPrivate::uiStateChanged() - Received unexpected state " << int(newState);
    }
}

void ApplicationPrivate::onProcessStateChanged(ProcessState::Type processState)
{
    Q_EMIT q->processStateChanged(processState);
    Q_EMIT q->processStateChanged(int(processState));
}

void ApplicationPrivate::onPoolRequest(const QString &poolRequestID)
{
    emitPooling(poolRequestID);
}

void ApplicationPrivate::applicationExit()
{
    if (autoExit) {
        quitApplication();
    } else {
        emitManualExit();
    }
}

bool ApplicationPrivate::isAwake() const
{
    return toolkitSupport->executionState() == ProcessExecutionState::Active;
}

bool ApplicationPrivate::isAsleep() const
{
    return toolkitSupport->executionState() == ProcessExecutionState::Inactive;
}

bool ApplicationPrivate::isThumbnailed() const
{
    return toolkitSupport->uiState() == ProcessUIState::Thumbnail;
}

bool ApplicationPrivate::isInvisible() const
{
    return toolkitSupport->uiState() == ProcessUIState::Invisible;
}

bool ApplicationPrivate::isFullscreen() const
{
    return toolkitSupport->uiState() == ProcessUIState::FullScreen;
}

bool ApplicationPrivate::isExecutionState(const QString &id, ProcessExecutionState::Type state,
                                          const char *warning) const
{
    const ProcessExecutionState::Type reported = toolkitSupport->executionStateForWindowGroup(id);
    if (reported == ProcessExecutionState::Unknown) {
        qWarning() << warning << Quoted{id};
    }
    return reported == state;
}

bool ApplicationPrivate::isUIState(const QString &id, ProcessUIState::Type state, const char *warning) const
{
    const ProcessUIState::Type reported = toolkitSupport->uiStateForWindowGroup(id);
    if (reported == ProcessUIState::Unknown) {
        qWarning() << warning << Quoted{id};
    }
    return reported == state;
}

bool ApplicationPrivate::isWindowGroupAwake(const QString &id) const
{
    return isExecutionState(id, ProcessExecutionState::Active,
                            "Application::isWindowGroupAwake(): Potentially unrecognized WGID");
}

bool ApplicationPrivate::isWindowGroupAsleep(const QString &id) const
{
    return isExecutionState(id, ProcessExecutionState::Inactive,
                            "Application::isWindowGroupAsleep(): Potentially unrecognized WGID");
}

bool ApplicationPrivate::isWindowGroupThumbnailed(const QString &id) const
{
    return isUIState(id, ProcessUIState::Thumbnail,
                     "Application::isWindowGroupThumbnailed(): Potentially unrecognized WGID");
}

bool ApplicationPrivate::isWindowGroupInvisible(const QString &id) const
{
    return isUIState(id, ProcessUIState::Invisible,
                     "Application::isWindowGroupInvisible(): Potentially unrecognized WGID");
}

bool ApplicationPrivate::isWindowGroupFullscreen(const QString &id) const
{
    return isUIState(id, ProcessUIState::FullScreen,
                     "Application::isWindowGroupFullscreen(): Potentially unrecognized WGID");
}

} // namespace kelp
