// SPDX-License-Identifier: Apache-2.0
// The C functions of navigator.h on the recording platform, as tables: all alike but for names and types.

#include "Recorder.h"

using namespace kelp::test;

namespace {

int numberOf(const char *function, const tarn_event_t *event, int Fields::*number)
{
    told(function, shown(event));
    const int value = event ? event->fields.*number : TARN_FAILURE;
    errno = value == TARN_FAILURE ? EINVAL : errno;
    return value;
}

const char *textOf(const char *function, const tarn_event_t *event, std::string Fields::*text)
{
    told(function, shown(event));
    return event ? (event->fields.*text).c_str() : "";
}

} // namespace

#define READER(type, name, function, field)                                                                  \
    type name(const tarn_event_t *event)                                                                     \
    {                                                                                                        \
        return function(#name, event, &Fields::field);                                                       \
    }
READER(int, navigator_event_get_window_state, numberOf, windowState)
READER(int, navigator_event_get_app_state, numberOf, appState)
READER(int, navigator_event_get_severity, numberOf, severity)
READER(int, navigator_event_get_orientation_angle, numberOf, angle)
READER(int, navigator_event_get_orientation_size_width, numberOf, width)
READER(int, navigator_event_get_orientation_size_height, numberOf, height)
READER(const char *, navigator_event_get_groupid, textOf, groupId)
READER(const char *, navigator_event_get_id, textOf, id)

// A request: its parameters, and after them what is noted of them.
#define REQUEST(name, parameters, ...)                                                                       \
    int name parameters                                                                                      \
    {                                                                                                        \
        return asked(#name __VA_OPT__(, ) __VA_ARGS__);                                                      \
    }
REQUEST(navigator_request_events, (int flags), flags)
REQUEST(navigator_stop_events, (int flags), flags)
REQUEST(navigator_close_window, (void))
REQUEST(navigator_extend_terminate, (void))
REQUEST(navigator_pooled_response, (const char *id), quoted(id))
REQUEST(navigator_set_close_prompt, (const char *title, const char *message), quoted(title), quoted(message))
REQUEST(navigator_clear_close_prompt, (void))
REQUEST(navigator_raw_write, (const char *data, unsigned int size), quoted(std::string(data, size)), size)
REQUEST(navigator_set_badge, (int badge), badge)
REQUEST(navigator_clear_badge, (void))
REQUEST(navigator_orientation_check_response_id, (const char *id, bool accepted), quoted(id), accepted)
REQUEST(navigator_done_orientation_id, (const char *id), quoted(id))
REQUEST(navigator_rotation_lock, (bool locked), locked)
REQUEST(navigator_request_swipe_start, (void))
REQUEST(navigator_stop_swipe_start, (void))

int navigator_extend_timeout(int timeout_ms, char **errmsg)
{
    const int result = asked(__func__, timeout_ms);
    if (result != TARN_SUCCESS && errmsg) {
        *errmsg = handedOut(__func__);
    }
    return result;
}

int navigator_set_orientation(int angle, char **id)
{
    const int result = asked(__func__, angle);
    if (result == TARN_SUCCESS && id) {
        *id = handedOut(__func__);
    }
    return result;
}
