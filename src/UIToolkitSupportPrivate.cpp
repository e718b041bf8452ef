// SPDX-License-Identifier: Apache-2.0
// See UIToolkitSupportPrivate.h.

#include "UIToolkitSupportPrivate.h"

#include "Locker.h"
#include "Messages.h"

#include <navigator/navigator.h>
#include <tarn/tarn.h>

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

namespace kelp {

const QString NO_GROUP_ID = QStringLiteral("none");

namespace {

QString _windowGroupID;    // the process's main window group
QMutex _windowGroupIDLock; // guards it

QString groupIdOf(tarn_event_t *event)
{
    return QString::fromLatin1(navigator_event_get_groupid(event));
}

QString idOf(tarn_event_t *event)
{
    return QString::fromLatin1(navigator_event_get_id(event));
}

// Not checked: an angle that is none of the enumeration's is passed on.
Orientation::Type angleOf(tarn_event_t *event)
{
    return static_cast<Orientation::Type>(navigator_event_get_orientation_angle(event));
}

// The event may have come on another thread, and the main one must run to react.
void wakeUpMainThread()
{
    const QCoreApplication *application = QCoreApplication::instance();
    QAbstractEventDispatcher *dispatcher =
        application ? QAbstractEventDispatcher::instance(application->thread()) : nullptr;
    if (dispatcher) {
        dispatcher->wakeUp();
    }
}

ProcessUIState::Type tarnWindowStateToProcessUIState(int windowState)
{
    switch (windowState) {
    case NAVIGATOR_WINDOW_FULLSCREEN:
        return ProcessUIState::FullScreen;
    case NAVIGATOR_WINDOW_THUMBNAIL:
        return ProcessUIState::Thumbnail;
    case NAVIGATOR_WINDOW_INVISIBLE:
        return ProcessUIState::Invisible;
    default:
        qWarning() << "UIToolkitSupportPrivate: Unrecognized TARN window state" << windowState;
        return ProcessUIState::Unknown;
    }
}

ProcessState::Type processStateOf(int appState)
{
    switch (appState) {
    case NAVIGATOR_APP_FOREGROUND:
        return ProcessState::Foreground;
    case NAVIGATOR_APP_BACKGROUND:
        return ProcessState::Background;
    case NAVIGATOR_APP_STOPPING:
        return ProcessState::Stopping;
    default:
        return ProcessState::Unknown;
    }
}

} // namespace

UIToolkitSupportPrivate::UIToolkitSupportPrivate(UIToolkitSupport *q) : q(q)
{
    (void)tarn_initialize(); // without a queue or a navigator, no signal is ever emitted
    (void)navigator_request_events(NAVIGATOR_EVENTS_EXTENDED);
    subscribe(navigator_get_domain());
}

UIToolkitSupportPrivate::~UIToolkitSupportPrivate()
{
    tarn_shutdown();
}

bool UIToolkitSupportPrivate::event(tarn_event_t *event)
{
    switch (tarn_event_get_code(event)) {
    case NAVIGATOR_EXIT:
        Q_EMIT q->exit();
        return true;
    case NAVIGATOR_WINDOW_STATE:
        handleWindowStateEvent(event);
        return true;
    case NAVIGATOR_SWIPE_DOWN:
        Q_EMIT q->swipedDown(SwipeDownMode::OnCompletionOnly);
        return true;
    case NAVIGATOR_SWIPE_START:
        Q_EMIT q->swipedDown(SwipeDownMode::OnStartOnly);
        return true;
    case NAVIGATOR_LOW_MEMORY:
        handleNavigatorLowMemoryEvent(event);
        return true;
    case NAVIGATOR_ORIENTATION_CHECK:
        Q_EMIT q->orientationCheck(idOf(event), angleOf(event));
        return true;
    case NAVIGATOR_ORIENTATION:
        Q_EMIT q->orientation(idOf(event), angleOf(event));
        return true;
    case NAVIGATOR_WINDOW_ACTIVE:
        handleExecutionStateChange(ProcessExecutionState::Active, event);
        return true;
    case NAVIGATOR_WINDOW_INACTIVE:
        handleExecutionStateChange(ProcessExecutionState::Inactive, event);
        return true;
    case NAVIGATOR_ORIENTATION_DONE:
        Q_EMIT q->orientationCompleted(angleOf(event));
        return true;
    case NAVIGATOR_APP_STATE:
        handleNavigatorAppState(event);
        return true;
    case NAVIGATOR_POOLED:
        handleNavigatorPooledEvent(event);
        return true;
    case NAVIGATOR_ORIENTATION_SIZE:
        Q_EMIT q->orientationSize(idOf(event), navigator_event_get_orientation_size_width(event),
                                  navigator_event_get_orientation_size_height(event));
        return true;
    default:
        return false;
    }
}

void UIToolkitSupportPrivate::handleWindowStateEvent(tarn_event_t *event)
{
    wakeUpMainThread(); // whatever the state: first of all
    const ProcessUIState::Type newState =
        tarnWindowStateToProcessUIState(navigator_event_get_window_state(event));
    if (newState == ProcessUIState::Unknown) {
        return;
    }
    const QString id = groupIdOf(event);
    setWindowGroupID(id);
    _windowGroupStateMap[id].uiState = newState;
    _uiState = newState;
    Q_EMIT q->uiStateChanged(newState, id);
}

void UIToolkitSupportPrivate::handleExecutionStateChange(ProcessExecutionState::Type newState,
                                                         tarn_event_t *event)
{
    const QString id = groupIdOf(event);
    setWindowGroupID(id);
    _windowGroupStateMap[id].executionState = newState;
    _executionState = newState;
    Q_EMIT q->executionStateChanged(newState, id);
}

// The only state of which repetitions are not passed on.
void UIToolkitSupportPrivate::handleNavigatorAppState(tarn_event_t *event)
{
    const ProcessState::Type newState = processStateOf(navigator_event_get_app_state(event));
    if (newState == _processState) {
        return;
    }
    _processState = newState;
    Q_EMIT q->processStateChanged(newState);
}

void UIToolkitSupportPrivate::handleNavigatorPooledEvent(tarn_event_t *event)
{
    Q_EMIT q->poolRequest(idOf(event));
}

// Only logged here: MemoryInfo tells applications.
void UIToolkitSupportPrivate::handleNavigatorLowMemoryEvent(tarn_event_t *event)
{
    const int severity = navigator_event_get_severity(event);
    qCritical() << "Process" << QCoreApplication::applicationPid()
                << "received low memory signal, priority =" << severity;
}

QString UIToolkitSupportPrivate::windowGroupID() const
{
    const Locker lock(&_windowGroupIDLock);
    return _windowGroupID;
}

void UIToolkitSupportPrivate::setWindowGroupID(const QString &id)
{
    const Locker lock(&_windowGroupIDLock);
    if (_windowGroupID.isEmpty() && id != NO_GROUP_ID) {
        _windowGroupID = id;
    }
}

void UIToolkitSupportPrivate::resetWindowGroupID()
{
    _windowGroupID = QString();
}

void UIToolkitSupportPrivate::setMainWindowGroup(const QString &id)
{
    if (id.isEmpty() || id == NO_GROUP_ID) {
        qWarning() << "UIToolkitSupportPrivate::setMainWindowGroup() - Invalid window group" << Quoted{id};
        return;
    }
    const Locker lock(&_windowGroupIDLock);
    _windowGroupID = id;
}

void UIToolkitSupportPrivate::deregisterWindowGroup(const QString &id)
{
    const int removed = static_cast<int>(_windowGroupStateMap.remove(id));
    if (removed != 1) {
        // The capital U in the middle of the name is part of the line.
        qWarning() << "UIToolkitSUpport::deregisterWindowGroup() unexpected result" << removed
                   << "when removing group" << Quoted{id};
    }
}

ProcessExecutionState::Type UIToolkitSupportPrivate::executionStateForWindowGroup(const QString &id) const
{
    return _windowGroupStateMap.value(id).executionState;
}

ProcessUIState::Type UIToolkitSupportPrivate::uiStateForWindowGroup(const QString &id) const
{
    return _windowGroupStateMap.value(id).uiState;
}

bool UIToolkitSupportPrivate::poolingComplete(const QString &id) const
{
    return navigator_pooled_response(id.toUtf8().constData()) == TARN_SUCCESS;
}

} // namespace kelp
