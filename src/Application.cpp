// SPDX-License-Identifier: Apache-2.0
// See kelp/Application.h. The work is the private object's and, for close prompts, ApplicationSupport's.

#include <kelp/Application.h>

#include "ApplicationPrivate.h"

#include <kelp/ApplicationSupport.h>
#include <kelp/UIToolkitSupport.h>

#include <navigator/navigator.h>
#include <tarn/tarn.h>

#include <QtCore/QDebug>

namespace kelp {

Application::Application(int &argc, char **argv)
    : QCoreApplication(argc, argv),
      d(new ApplicationPrivate(this))
{}

// The private object is a child: it goes with the base class.
Application::~Application() = default;

Application *Application::instance()
{
    QCoreApplication *application = QCoreApplication::instance();
    auto *instance = qobject_cast<Application *>(application);
    if (application && !instance) {
        qWarning() << "[Application::instance] Not an instance of kelp::Application.";
    }
    return instance;
}

void Application::setMainWindowGroup(const QString &windowGroupID)
{
    d->toolkitSupport->setMainWindowGroup(windowGroupID);
}

void Application::deregisterWindowGroup(const QString &windowGroupID)
{
    d->toolkitSupport->deregisterWindowGroup(windowGroupID);
}

bool Application::setClosePrompt(const QString &title, const QString &message)
{
    return ApplicationSupport::setClosePrompt(title, message);
}

bool Application::clearClosePrompt()
{
    return ApplicationSupport::clearClosePrompt();
}

bool Application::isAwake() const
{
    return d->isAwake();
}

bool Application::isAsleep() const
{
    return d->isAsleep();
}

bool Application::isThumbnailed() const
{
    return d->isThumbnailed();
}

bool Application::isInvisible() const
{
    return d->isInvisible();
}

bool Application::isFullscreen() const
{
    return d->isFullscreen();
}

bool Application::isWindowGroupAwake(const QString &windowGroupID) const
{
    return d->isWindowGroupAwake(windowGroupID);
}

bool Application::isWindowGroupAsleep(const QString &windowGroupID) const
{
    return d->isWindowGroupAsleep(windowGroupID);
}

bool Application::isWindowGroupThumbnailed(const QString &windowGroupID) const
{
    return d->isWindowGroupThumbnailed(windowGroupID);
}

bool Application::isWindowGroupInvisible(const QString &windowGroupID) const
{
    return d->isWindowGroupInvisible(windowGroupID);
}

bool Application::isWindowGroupFullscreen(const QString &windowGroupID) const
{
    return d->isWindowGroupFullscreen(windowGroupID);
}

// The same rule as the private object's, on the same flag.
void Application::setAutoExit(bool autoExit)
{
    d->setAutoExit(autoExit);
}

bool Application::autoExit() const
{
    return d->autoExit;
}

bool Application::extendTerminationTimeout()
{
    return d->extendTerminationTimeout();
}

bool Application::setIconBadge(IconBadge::Type badge)
{
    return d->setIconBadge(badge);
}

bool Application::setIconBadge(int badge)
{
    return d->setIconBadge(badge);
}

bool Application::minimize()
{
    return d->minimize();
}

bool Application::requestExit()
{
    return d->requestExit();
}

void Application::poolingComplete(const QString &poolRequestID) const
{
    d->poolingComplete(poolRequestID);
}

} // namespace kelp
