// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_APPLICATION_H
#define KELP_APPLICATION_H

#include <kelp/Export.h>
#include <kelp/IconBadge.h>
#include <kelp/ProcessState.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

namespace kelp {

class ApplicationPrivate;

/*!
 * The application object: a QCoreApplication that follows and steers its life cycle on the device.
 *
 * \code
 * int main(int argc, char **argv)
 * {
 *     kelp::Application application(argc, argv);
 *     QObject::connect(&application, &kelp::Application::thumbnail, [] { pauseGame(); });
 *     QObject::connect(&application, &kelp::Application::fullscreen, [] { resumeGame(); });
 *     return application.exec();
 * }
 * \endcode
 *
 * The navigator's events arrive while the event loop runs. Each becomes a signal for its window group and, where that
 * is the main window group, a second one for the application as a whole, in this order. The navigator's "none" group
 * stands for the main one. An update for another group gives a warning and the group's signal only.
 *
 * When the navigator asks the application to exit, the event loop is left, unless autoExit is false.
 *
 * Requests are synchronous; they return true when the navigator has taken them, and most write a warning with the
 * platform's error when it has not. Without a device they fail and no event arrives; the application runs all the
 * same.
 *
 * Threads: one object per process, made and used on the main thread.
 */
class KELP_EXPORT Application : public QCoreApplication
{
    Q_OBJECT
    Q_PROPERTY(bool autoExit READ autoExit WRITE setAutoExit NOTIFY autoExitChanged FINAL)

public:
    /*! As QCoreApplication, and asks the navigator for the process's events. \a argc and \a argv must outlive it. */
    Application(int &argc, char **argv);
    ~Application() override;

    /*! The application object; null before it is made, and with a warning where it is not a kelp::Application. */
    static Application *instance();

    /*! Chooses the main window group: see UIToolkitSupport::setMainWindowGroup(). */
    void setMainWindowGroup(const QString &windowGroupID);

    /*! Forgets a window group that the application has closed: see UIToolkitSupport::deregisterWindowGroup(). */
    void deregisterWindowGroup(const QString &windowGroupID);

    /*! Sets the close prompt: see ApplicationSupport::setClosePrompt(). */
    Q_INVOKABLE bool setClosePrompt(const QString &title, const QString &message);

    /*! Removes the close prompt: see ApplicationSupport::clearClosePrompt(). */
    Q_INVOKABLE bool clearClosePrompt();

    /*! \name The latest state reported for any window group; all false before the first report. */
    ///@{
    Q_INVOKABLE bool isAwake() const;
    Q_INVOKABLE bool isAsleep() const;
    Q_INVOKABLE bool isThumbnailed() const;
    Q_INVOKABLE bool isInvisible() const;
    Q_INVOKABLE bool isFullscreen() const;
    ///@}

    /*! \name The latest state reported for one window group; false, with a warning, for one without any. */
    ///@{
    Q_INVOKABLE bool isWindowGroupAwake(const QString &windowGroupID) const;
    Q_INVOKABLE bool isWindowGroupAsleep(const QString &windowGroupID) const;
    Q_INVOKABLE bool isWindowGroupThumbnailed(const QString &windowGroupID) const;
    Q_INVOKABLE bool isWindowGroupInvisible(const QString &windowGroupID) const;
    Q_INVOKABLE bool isWindowGroupFullscreen(const QString &windowGroupID) const;
    ///@}

public Q_SLOTS:
    /*!
     * Chooses what happens when the navigator asks the application to exit: true, as at the start, leaves the event
     * loop; false emits manualExit() and leaves the rest to the application.
     */
    void setAutoExit(bool autoExit);

    /*! The choice made by setAutoExit(). */
    bool autoExit() const;

    /*!
     * Asks for more time before a pending termination is enforced. Writes no warning.
     *
     * Returns false when none is pending or the device grants no more, errno telling why.
     */
    bool extendTerminationTimeout();

    /*! Shows a badge on the application's icon, or removes it. */
    bool setIconBadge(kelp::IconBadge::Type badge);

    /*! Asks the navigator to turn the application's window into a thumbnail. */
    bool minimize();

    /*! Asks the navigator to close the application; its exit request follows, see autoExit. */
    bool requestExit();

    /*! Answers the request that pooling() carried. A failure is seen only as a warning. */
    void poolingComplete(const QString &poolRequestID) const;

protected Q_SLOTS:
    /*! The same by number, for callers without the enumeration: 0 or 1; others give a warning and false. */
    bool setIconBadge(int badge);

Q_SIGNALS:
    /*! The main window group became a thumbnail. */
    void thumbnail();
    /*! The window group \a windowGroupID became a thumbnail. */
    void windowGroupThumbnailed(const QString &windowGroupID);

    /*! The main window group fills the screen. */
    void fullscreen();
    /*! The window group \a windowGroupID fills the screen. */
    void windowGroupFullscreen(const QString &windowGroupID);

    /*! The main window group is out of sight. */
    void invisible();
    /*! The window group \a windowGroupID is out of sight. */
    void windowGroupInvisible(const QString &windowGroupID);

    /*! A person swiped down from the top edge: time to show the application's menu. */
    void swipeDown();

    /*! The main window group lost the input focus. */
    void asleep();
    /*! The window group \a windowGroupID lost the input focus. */
    void windowGroupAsleep(const QString &windowGroupID);

    /*! The main window group has the input focus. */
    void awake();
    /*! The window group \a windowGroupID has the input focus. */
    void windowGroupAwake(const QString &windowGroupID);

    /*! With autoExit false: the navigator asks the application to exit. Leave the event loop soon. */
    void manualExit();

    /*! setAutoExit() changed the choice to \a newAutoExit. */
    void autoExitChanged(bool newAutoExit);

    /*! The state of the process changed; the same with the number of the state follows. */
    void processStateChanged(kelp::ProcessState::Type processState);

    /*! The process is to be pooled: put away what can be, then call poolingComplete() with \a poolRequestID. */
    void pooling(const QString &poolRequestID);

    /*! The number of the state that processStateChanged(kelp::ProcessState::Type) has just carried. */
    void processStateChanged(int processState);

private:
    Q_DISABLE_COPY(Application)
    friend class ApplicationPrivate;

    ApplicationPrivate *d;
};

} // namespace kelp

#endif
