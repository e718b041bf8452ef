// SPDX-License-Identifier: Apache-2.0
// The navigator integration behind UIToolkitSupport: turns the navigator's events into state and into the facade's
// signals.
#pragma once

#include "DeviceProperties.h"

#include <kelp/AbstractTarnEventHandler.h>
#include <kelp/UIToolkitSupport.h>

#include <QtCore/QMap>

namespace kelp {

// The navigator's name for no particular window group, which stands for the main one.
extern const QString NO_GROUP_ID;

class UIToolkitSupportPrivate : public AbstractTarnEventHandler
{
public:
    // The last states reported for a window group.
    struct WindowGroupState {
        ProcessExecutionState::Type executionState = ProcessExecutionState::Unknown;
        ProcessUIState::Type uiState = ProcessUIState::Unknown;
    };

    explicit UIToolkitSupportPrivate(UIToolkitSupport *q);
    ~UIToolkitSupportPrivate() override;

    bool event(tarn_event_t *event) override;

    QString windowGroupID() const;
    void setWindowGroupID(const QString &id); // the first real id of the process only
    void setMainWindowGroup(const QString &id);
    void deregisterWindowGroup(const QString &id);
    ProcessExecutionState::Type executionState() const { return _executionState; }
    ProcessExecutionState::Type executionStateForWindowGroup(const QString &id) const;
    ProcessUIState::Type uiState() const { return _uiState; }
    ProcessUIState::Type uiStateForWindowGroup(const QString &id) const;
    ProcessState::Type processState() const { return _processState; }
    bool poolingComplete(const QString &id) const;

    bool orientationCheckResponse(const QString &orientationRequestID, bool response);
    bool doneOrientation(const QString &orientationRequestID);
    bool requestOrientation(Orientation::Type angle);
    bool lockOrientation();
    bool unlockOrientation();
    bool setSwipeDownMode(SwipeDownMode::Type mode);
    bool setWindowCreationTimeout(int timeout); // milliseconds

    // What the device says at this moment; on failure nothing, and a warning.
    static DeviceProperties deviceProperties();
    // The file that the platform selects for the asset at a path in the assets directory; empty when it selects none.
    static QString assetAbsolutePath(int width, int height, const QString &theme, const QString &path,
                                     const QString &assetsDir);

    // For inspection.
    static void resetWindowGroupID(); // takes no lock
    bool windowGroupStateMapContainsKey(const QString &id) const { return _windowGroupStateMap.contains(id); }
    int windowGroupStateMapSize() const { return static_cast<int>(_windowGroupStateMap.size()); }
    static UIToolkitSupportPrivate *toPrivate(UIToolkitSupport *support) { return support->d; }

private:
    void handleWindowStateEvent(tarn_event_t *event);
    void handleExecutionStateChange(ProcessExecutionState::Type newState, tarn_event_t *event);
    void handleNavigatorAppState(tarn_event_t *event);
    void handleNavigatorPooledEvent(tarn_event_t *event);
    void handleNavigatorLowMemoryEvent(tarn_event_t *event);

    UIToolkitSupport *q;
    ProcessState::Type _processState = ProcessState::Unknown;
    // Of the window group that had the last event of the kind.
    ProcessExecutionState::Type _executionState = ProcessExecutionState::Unknown;
    ProcessUIState::Type _uiState = ProcessUIState::Unknown;
    QMap<QString, WindowGroupState> _windowGroupStateMap; // by window-group id
};

} // namespace kelp
