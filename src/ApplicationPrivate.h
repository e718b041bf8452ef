// SPDX-License-Identifier: Apache-2.0
// The life cycle behind Application: filters the navigator's updates by window group, applies the exit policy and
// sends the application's requests.
#pragma once

#include <kelp/Application.h>
#include <kelp/ProcessExecutionState.h>
#include <kelp/ProcessUIState.h>

namespace kelp {

class UIToolkitSupport;

class ApplicationPrivate : public QObject
{
    Q_OBJECT

public:
    explicit ApplicationPrivate(Application *q);
    ~ApplicationPrivate() override;

    // Everything that the application object says, and its quitting, passes through one of these. The signal of the
    // window group comes first.
    virtual void emitAwake(const QString &windowGroupID, bool emitApplicationSignal);
    virtual void emitAsleep(const QString &windowGroupID, bool emitApplicationSignal);
    virtual void emitInvisible(const QString &windowGroupID, bool emitApplicationSignal);
    virtual void emitThumbnailed(const QString &windowGroupID, bool emitApplicationSignal);
    virtual void emitFullscreen(const QString &windowGroupID, bool emitApplicationSignal);
    virtual void emitManualExit();
    virtual void quitApplication();
    virtual void emitAutoExitChanged(bool newAutoExit);
    virtual void emitPooling(const QString &poolRequestID);

    void setAutoExit(bool value);

    bool isAwake() const;
    bool isAsleep() const;
    bool isThumbnailed() const;
    bool isInvisible() const;
    bool isFullscreen() const;
    bool isWindowGroupAwake(const QString &id) const;
    bool isWindowGroupAsleep(const QString &id) const;
    bool isWindowGroupThumbnailed(const QString &id) const;
    bool isWindowGroupInvisible(const QString &id) const;
    bool isWindowGroupFullscreen(const QString &id) const;

    // Requests: ApplicationRequests.cpp.
    bool extendTerminationTimeout();
    bool setIconBadge(IconBadge::Type badge);
    bool setIconBadge(int badge);
    bool minimize();
    bool requestExit();
    void poolingComplete(const QString &poolRequestID) const;

public Q_SLOTS:
    void executionStateChanged(kelp::ProcessExecutionState::Type newState, const QString &windowGroupID);
    void uiStateChanged(kelp::ProcessUIState::Type newState, const QString &windowGroupID);
    void onProcessStateChanged(kelp::ProcessState::Type processState);
    void onPoolRequest(const QString &poolRequestID);
    void applicationExit();

public:
    Application *q;                   // the owner; every signal is emitted on it
    UIToolkitSupport *toolkitSupport; // a child
    bool autoExit;

private:
    bool isForApplication(const QString &windowGroupID, const char *warning) const;
    bool isExecutionState(const QString &id, ProcessExecutionState::Type state, const char *warning) const;
    bool isUIState(const QString &id, ProcessUIState::Type state, const char *warning) const;
};

} // namespace kelp
