// SPDX-License-Identifier: Apache-2.0
// What an application asks of the navigator: the requests of ApplicationPrivate. Each is one synchronous call into the
// platform, on the queue that the private object's constructor has initialised.

#include "ApplicationPrivate.h"

#include <kelp/PpsObject.h>

#include <navigator/navigator.h>
#include <tarn/tarn.h>

#include <QtCore/QByteArray>
#include <QtCore/QDebug>

#include <cerrno>
#include <cstring>

namespace kelp {

namespace {

int showBadge(IconBadge::Type badge)
{
    switch (badge) {
    case IconBadge::None:
        return navigator_clear_badge();
    case IconBadge::Splat:
        return navigator_set_badge(NAVIGATOR_BADGE_SPLAT);
    default:
        return TARN_FAILURE;
    }
}

} // namespace

bool ApplicationPrivate::extendTerminationTimeout()
{
    return navigator_extend_terminate() == TARN_SUCCESS;
}

bool ApplicationPrivate::setIconBadge(IconBadge::Type badge)
{
    if (showBadge(badge) == TARN_SUCCESS) {
        return true;
    }
    const int error = errno; // for an unknown badge that of whatever failed last: kept on purpose
    qWarning() << "Failed to set icon badge to" << int(badge) << "-" << std::strerror(error);
    return false;
}

bool ApplicationPrivate::setIconBadge(int badge)
{
    if (badge < IconBadge::None || badge > IconBadge::Splat) {
        qWarning() << "ApplicationPrivate::setIconBadge(): Unexpected badge parameter value -" << badge;
        return false;
    }
    return setIconBadge(static_cast<IconBadge::Type>(badge));
}

bool ApplicationPrivate::minimize()
{
    bool ok = true;
    const QByteArray request =
        PpsObject::encode({{QStringLiteral("msg"), QStringLiteral("minimizeWindow")}}, &ok);
    if (!ok) {
        qWarning() << "Minimize request encoding failed";
        return false;
    }
    if (navigator_raw_write(request.constData(), static_cast<unsigned int>(request.size())) == TARN_SUCCESS) {
        return true;
    }
    const int error = errno;
    qWarning() << "Minimize request - NRW failed -" << std::strerror(error);
    return false;
}

bool ApplicationPrivate::requestExit()
{
    if (navigator_close_window() == TARN_SUCCESS) {
        return true;
    }
    const int error = errno;
    qWarning() << "Application::requestExit() failed" << std::strerror(error);
    return false;
}

void ApplicationPrivate::poolingComplete(const QString &poolRequestID) const
{
    if (navigator_pooled_response(poolRequestID.toUtf8().constData()) != TARN_SUCCESS) {
        const int error = errno;
        // The exit request's text, also here: kept on purpose.
        qWarning() << "Application::requestExit() failed" << std::strerror(error);
    }
}

} // namespace kelp
