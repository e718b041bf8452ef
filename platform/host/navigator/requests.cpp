// SPDX-License-Identifier: Apache-2.0
// The C functions of navigator.h that ask something of the navigator.

#include "platform/host/Result.h"
#include "platform/host/connection/DeviceConnection.h"
#include "platform/link/Limits.h"

#include <navigator/navigator.h>

#include <cstring>
#include <string_view>

using namespace kelp;
using namespace kelp::platform;
using link::Request;
using link::RequestCode;

static_assert(NAVIGATOR_MAX_TEXT == link::MAX_TEXT_BYTES);

namespace {

// Sends a request and sets text to the answer's text. Returns 0 or an errno.
int send(const Request &request, std::string &text)
{
    if (request.first.size() > link::MAX_TEXT_BYTES || request.second.size() > link::MAX_TEXT_BYTES) {
        return E2BIG;
    }
    DeviceConnection::Answer answer;
    const int status = DeviceConnection::instance().ask(request, answer);
    text = std::move(answer.text);
    return status;
}

int resultOfRequest(RequestCode code, int number = 0)
{
    return resultOf([=] {
        std::string text;
        return send({code, number, {}, {}}, text);
    });
}

int resultOfTextRequest(RequestCode code, int number, const char *first, const char *second = "")
{
    return resultOf([=] {
        if (!first || !second) {
            return EINVAL;
        }
        std::string text;
        return send({code, number, first, second}, text);
    });
}

// A copy of a text for the caller, who frees it with tarn_free().
char *copyForCaller(const std::string &text)
{
    char *copy = ::strdup(text.c_str());
    if (!copy) {
        throw std::bad_alloc();
    }
    return copy;
}

} // namespace

int navigator_close_window(void)
{
    return resultOfRequest(RequestCode::CloseWindow);
}

int navigator_extend_terminate(void)
{
    return resultOfRequest(RequestCode::ExtendTerminate);
}

int navigator_extend_timeout(int timeout_ms, char **errmsg)
{
    return resultOf([=] {
        std::string reason;
        const int error = send({RequestCode::ExtendTimeout, timeout_ms, {}, {}}, reason);
        if (error && errmsg) {
            *errmsg = reason.empty() ? nullptr : copyForCaller(reason);
        }
        return error;
    });
}

int navigator_pooled_response(const char *id)
{
    return resultOfTextRequest(RequestCode::PooledResponse, 0, id);
}

int navigator_set_close_prompt(const char *title, const char *message)
{
    return resultOfTextRequest(RequestCode::SetClosePrompt, 0, title, message);
}

int navigator_clear_close_prompt(void)
{
    return resultOfRequest(RequestCode::ClearClosePrompt);
}

int navigator_raw_write(const char *data, unsigned int length)
{
    return resultOf([=] {
        if (!data || length > link::MAX_TEXT_BYTES) {
            return data ? E2BIG : EINVAL;
        }
        std::string text;
        return send({RequestCode::RawWrite, 0, std::string(data, length), {}}, text);
    });
}

int navigator_set_badge(int badge)
{
    return resultOfRequest(RequestCode::SetBadge, badge);
}

int navigator_clear_badge(void)
{
    return resultOfRequest(RequestCode::ClearBadge);
}

int navigator_orientation_check_response_id(const char *id, bool will_rotate)
{
    return resultOfTextRequest(RequestCode::OrientationCheckResponse, will_rotate, id);
}

int navigator_done_orientation_id(const char *id)
{
    return resultOfTextRequest(RequestCode::DoneOrientation, 0, id);
}

int navigator_set_orientation(int angle, char **id)
{
    return resultOf([=] {
        std::string text;
        const int error = send({RequestCode::SetOrientation, angle, {}, {}}, text);
        if (!error && id) {
            *id = copyForCaller(text);
        }
        return error;
    });
}

int navigator_rotation_lock(bool locked)
{
    return resultOfRequest(RequestCode::RotationLock, locked);
}

int navigator_request_swipe_start(void)
{
    return resultOfRequest(RequestCode::RequestSwipeStart);
}

int navigator_stop_swipe_start(void)
{
    return resultOfRequest(RequestCode::StopSwipeStart);
}
