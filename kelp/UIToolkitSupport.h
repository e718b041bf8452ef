// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_UITOOLKITSUPPORT_H
#define KELP_UITOOLKITSUPPORT_H

#include <kelp/Export.h>
#include <kelp/Orientation.h>
#include <kelp/ProcessExecutionState.h>
#include <kelp/ProcessState.h>
#include <kelp/ProcessUIState.h>
#include <kelp/SwipeDownMode.h>

#include <QtCore/QObject>
#include <QtCore/QString>

namespace kelp {

class UIToolkitSupportPrivate;

/*!
 * The bridge between a UI toolkit and the navigator, the service that owns the application's windows.
 *
 * It turns the navigator's events into state kept for each window group (the navigator's identifier of a group of the
 * process's windows) and into signals. Applications that need no toolkit use Application, which owns one of these.
 *
 * \code
 * kelp::UIToolkitSupport support;
 * connect(&support, &kelp::UIToolkitSupport::uiStateChanged, scene, &Scene::setUIState);
 * connect(&support, &kelp::UIToolkitSupport::exit, qApp, &QCoreApplication::quit);
 * \endcode
 *
 * Threads: events arrive, and signals are emitted, on the thread that made the object, which needs an event loop. All
 * operations belong to that thread but windowGroupID(), which may be called from any.
 */
class KELP_EXPORT UIToolkitSupport : public QObject
{
    Q_OBJECT
    Q_PROPERTY(kelp::ProcessExecutionState::Type executionState READ executionState NOTIFY
                   executionStateChanged FINAL)
    Q_PROPERTY(kelp::ProcessUIState::Type uiState READ uiState NOTIFY uiStateChanged FINAL)
    Q_PROPERTY(kelp::ProcessState::Type processState READ processState NOTIFY processStateChanged FINAL)

public:
    /*!
     * Asks the navigator for this process's events, on the calling thread.
     *
     * Without a device, or when the navigator refuses, no signal is ever emitted.
     */
    explicit UIToolkitSupport(QObject *parent = nullptr);
    ~UIToolkitSupport() override;

    /*!
     * The process's main window group: the first real one that an event named, or what setMainWindowGroup() chose.
     * Empty until then. One for all objects of the process.
     */
    QString windowGroupID() const;

    /*! Chooses the main window group. An empty \a id, and "none", change nothing and give a warning. */
    void setMainWindowGroup(const QString &id);

    /*!
     * Forgets the state of the window group \a id, which the application has closed. An unknown one gives a warning.
     *
     * The main group and the latest states stay as they are, even if they were this group's.
     */
    void deregisterWindowGroup(const QString &id);

    /*! The latest execution state reported for any window group of the process. */
    ProcessExecutionState::Type executionState() const;

    /*! The latest execution state reported for the window group \a id; Unknown for one that no event has named. */
    ProcessExecutionState::Type executionStateForWindowGroup(const QString &id) const;

    /*! The latest UI state reported for any window group of the process. */
    ProcessUIState::Type uiState() const;

    /*! The latest UI state reported for the window group \a id; Unknown for one that no event has named. */
    ProcessUIState::Type uiStateForWindowGroup(const QString &id) const;

    /*! The latest state of the process; Unknown until one is reported. */
    ProcessState::Type processState() const;

    /*!
     * Answers the request that poolRequest() carried: the application is ready to be pooled.
     *
     * Returns false when the navigator does not take the answer, errno telling why.
     */
    bool poolingComplete(const QString &id) const;

Q_SIGNALS:
    /*! A window group was given the input focus, or lost it. Emitted at each report, changed or not. */
    void executionStateChanged(kelp::ProcessExecutionState::Type newState, const QString &windowGroupID);

    /*! A window group fills the screen, became a thumbnail, or is out of sight. Emitted at each report, changed or not. */
    void uiStateChanged(kelp::ProcessUIState::Type newState, const QString &windowGroupID);

    /*! A person swiped down from the top edge: the swipe's completion, or its start where the toolkit asked for that. */
    void swipedDown(kelp::SwipeDownMode::Type swipeDownMode);

    /*! The process is to end, and will be ended if it takes too long. Leaving the event loop is the listener's business. */
    void exit();

    /*! The screen is about to be turned: may it? \a orientationRequestID is to be given back with the answer. */
    void orientationCheck(const QString &orientationRequestID, kelp::Orientation::Type angle);

    /*! The screen's size in pixels after the rotation that is under way. */
    void orientationSize(const QString &orientationRequestID, int width, int height);

    /*! The screen turns now: lay out anew. */
    void orientation(const QString &orientationRequestID, kelp::Orientation::Type angle);

    /*! The rotation is over. */
    void orientationCompleted(kelp::Orientation::Type angle);

    /*! The state of the process changed. Emitted on a change only. */
    void processStateChanged(kelp::ProcessState::Type processState);

    /*! The process is to be pooled: put away what can be, then call poolingComplete() with \a poolRequestId. */
    void poolRequest(const QString &poolRequestId);

private:
    Q_DISABLE_COPY(UIToolkitSupport)
    friend class UIToolkitSupportPrivate;

    UIToolkitSupportPrivate *d;
};

} // namespace kelp

#endif
