// SPDX-License-Identifier: Apache-2.0
// What a UI toolkit asks of the navigator: the requests of UIToolkitSupportPrivate about the screen's orientation, the
// swipe from the top edge and the first window. Each is one synchronous call into the platform.

#include "UIToolkitSupportPrivate.h"

#include <navigator/navigator.h>
#include <tarn/tarn.h>

#include <QtCore/QDebug>

#include <cerrno>
#include <cstring>
#include <memory>

namespace kelp {

bool UIToolkitSupportPrivate::orientationCheckResponse(const QString &orientationRequestID, bool response)
{
    return navigator_orientation_check_response_id(orientationRequestID.toUtf8().constData(), response) ==
           TARN_SUCCESS;
}

bool UIToolkitSupportPrivate::doneOrientation(const QString &orientationRequestID)
{
    return navigator_done_orientation_id(orientationRequestID.toUtf8().constData()) == TARN_SUCCESS;
}

bool UIToolkitSupportPrivate::requestOrientation(Orientation::Type angle)
{
    return navigator_set_orientation(angle, nullptr) == TARN_SUCCESS;
}

bool UIToolkitSupportPrivate::lockOrientation()
{
    return navigator_rotation_lock(true) == TARN_SUCCESS;
}

bool UIToolkitSupportPrivate::unlockOrientation()
{
    return navigator_rotation_lock(false) == TARN_SUCCESS;
}

bool UIToolkitSupportPrivate::setSwipeDownMode(SwipeDownMode::Type mode)
{
    int result = TARN_FAILURE;
    switch (mode) {
    case SwipeDownMode::OnCompletionOnly:
        result = navigator_stop_swipe_start();
        break;
    case SwipeDownMode::OnStartOnly:
        result = navigator_request_swipe_start();
        break;
    default:
        qWarning() << "setSwipeDownMode() - Unrecognized swipe down mode" << int(mode);
        return false;
    }
    if (result == TARN_SUCCESS) {
        return true;
    }
    const int error = errno;
    qWarning() << "setSwipeDownMode() - Failed to set mode to" << int(mode) << "-" << std::strerror(error);
    return false;
}

bool UIToolkitSupportPrivate::setWindowCreationTimeout(int timeout)
{
    char *text = nullptr;
    if (navigator_extend_timeout(timeout, &text) == TARN_SUCCESS) {
        return true;
    }
    const std::unique_ptr<char, decltype(&tarn_free)> errorText(text, tarn_free);
    qWarning() << "Failed to set window creation timeout -" << errorText.get(); // null prints as nothing
    return false;
}

} // namespace kelp
