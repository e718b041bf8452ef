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
#include <QtCore/QUrl>

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
 * A rotation is a conversation: orientationCheck() asks whether the screen may be turned, and is answered with
 * orientationCheckResponse(). If the answer was yes, orientationSize() and orientation() tell the toolkit to lay out
 * anew, which it reports with doneOrientation(); then comes orientationCompleted().
 *
 * Threads: events arrive, and signals are emitted, on the thread that made the object, which needs an event loop. All
 * operations belong to that thread but windowGroupID() and absolutePathFromUrl(), which may be called from any.
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

    /*!
     * Answers orientationCheck(), whose id \a orientationRequestID is: true lets the screen be turned.
     *
     * Returns false when the navigator does not take the answer, errno telling why. So do the requests below that give
     * no warning.
     */
    bool orientationCheckResponse(const QString &orientationRequestID, bool response);

    /*! Reports that the application has finished its part of the rotation with the id \a orientationRequestID. */
    bool doneOrientation(const QString &orientationRequestID);

    /*!
     * Asks for the screen to be turned to \a angle, also while it is locked. True says that the navigator has taken
     * the request, not that the screen has turned: the signals of a rotation follow.
     */
    bool requestOrientation(kelp::Orientation::Type angle);

    /*! Keeps the screen from being turned unless the application asks for it. */
    bool lockOrientation();

    /*! Ends lockOrientation(). */
    bool unlockOrientation();

    /*!
     * Chooses whether swipedDown() tells of the start of a swipe from the top edge as well as of its completion
     * (OnStartOnly), or of its completion alone (OnCompletionOnly).
     *
     * Returns false, with a warning, when the navigator refuses and for a value of no name.
     */
    bool setSwipeDownMode(kelp::SwipeDownMode::Type mode);

    /*!
     * Sets the time in milliseconds that the application may take to make its first window.
     *
     * Returns false, with a warning that has the navigator's reason, when it refuses.
     */
    bool setWindowCreationTimeout(int timeout);

    /*!
     * The absolute, cleaned path of the local file that \a url names. Empty, with a warning, for a scheme other than
     * these:
     *
     * - none, or "file": a relative path starts from the current directory.
     * - "asset": a file of the application's package, named by its path in the assets directory, "app/native/assets"
     *   beside the home directory (HOME). Where the package has a variant of it for the device's screen and theme, the
     *   result is that variant. A host is ignored, with a warning. The environment variable MARIGOLD_THEME goes before
     *   the device's theme.
     *
     * The file need not exist, and the result is outside the assets directory where the path leads there. The device
     * is asked anew each time; when it does not tell its screen and theme, a warning says so, and no variant is looked
     * for.
     */
    static QString absolutePathFromUrl(const QUrl &url);

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
