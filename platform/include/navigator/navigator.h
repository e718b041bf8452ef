/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The navigator: the system service that owns application windows, moves them between full screen, thumbnail and
 * invisible, and tells each process when it is active, when it should stop and when it has been pooled.
 *
 * A process becomes an application of the device when one of its threads calls navigator_request_events(). From
 * then on every such thread receives, on its own queue (see tarn.h), each event for the process: events of the
 * domain navigator_get_domain(), told apart by tarn_event_get_code() and read with navigator_event_get_*().
 *
 * Requests are synchronous: each is sent to the device and returns when the navigator has answered.
 *
 * Threads: every function may be called from any thread.
 *
 * Errors: requests return TARN_SUCCESS or TARN_FAILURE with the cause in errno. Besides what is said at each:
 *   ENOTCONN      no device runs where KELP_DEVICE points, or KELP_DEVICE is not set: start one, or set it,
 *   ECONNRESET    the device went away during the request; the next request looks for a device anew,
 *   ETIMEDOUT     the device did not answer within ten seconds,
 *   EACCES        the device belongs to another user,
 *   EPROTO        the device speaks another version of the protocol,
 *   ENOTSUP       the navigator of this device does not offer the request,
 *   EAGAIN        what follows is events, and the application has not read those before,
 *   EINVAL        an argument is NULL or out of its range,
 *   E2BIG         a text is longer than NAVIGATOR_MAX_TEXT bytes,
 *   EMFILE, ENFILE, ENOMEM  no descriptor or memory is left.
 * A device can also be told to make any request fail with any errno.
 */
#ifndef NAVIGATOR_NAVIGATOR_H
#define NAVIGATOR_NAVIGATOR_H

#include <stdbool.h>

#include <platform/export.h>
#include <tarn/tarn.h>

PLATFORM_BEGIN_DECLS

/* The longest text in bytes, without its end, that a request carries. */
#define NAVIGATOR_MAX_TEXT 4096

/* Codes of the navigator's events, and what their readers give. */
enum navigator_event_code {
    NAVIGATOR_EXIT = 2,              /* the application must end */
    NAVIGATOR_WINDOW_STATE = 3,      /* a window group changed: window state, group id */
    NAVIGATOR_SWIPE_DOWN = 4,        /* a swipe from the top edge was completed */
    NAVIGATOR_SWIPE_START = 5,       /* a swipe from the top edge begins */
    NAVIGATOR_LOW_MEMORY = 6,        /* memory is short: severity */
    NAVIGATOR_ORIENTATION_CHECK = 7, /* may the screen rotate?: id, angle */
    NAVIGATOR_ORIENTATION = 8,       /* the screen rotates: id, angle */
    NAVIGATOR_WINDOW_ACTIVE = 10,    /* a window group has the input focus: group id */
    NAVIGATOR_WINDOW_INACTIVE = 11,  /* a window group has lost it: group id */
    NAVIGATOR_ORIENTATION_DONE = 12, /* the rotation is over: angle */
    NAVIGATOR_APP_STATE = 36,        /* the process's state changed: application state */
    NAVIGATOR_POOLED = 41,           /* the process has been pooled: id, to be answered */
    NAVIGATOR_ORIENTATION_SIZE = 42  /* the screen's next size: id, width, height */
};

/* Values of navigator_event_get_window_state(). */
enum navigator_window_state {
    NAVIGATOR_WINDOW_FULLSCREEN = 0,
    NAVIGATOR_WINDOW_THUMBNAIL = 1,
    NAVIGATOR_WINDOW_INVISIBLE = 2
};

/* Values of navigator_event_get_app_state(). */
enum navigator_app_state {
    NAVIGATOR_APP_FOREGROUND = 0,
    NAVIGATOR_APP_BACKGROUND = 1,
    NAVIGATOR_APP_STOPPING = 2
};

/* Values of navigator_event_get_severity(). */
enum navigator_severity {
    NAVIGATOR_MEMORY_CLEAR = 0, /* memory is no longer short */
    NAVIGATOR_MEMORY_LOW = 1,   /* give back what is easily made again */
    NAVIGATOR_MEMORY_CRITICAL = 2
};

/* Values of navigator_set_badge(). */
enum navigator_badge { NAVIGATOR_BADGE_SPLAT = 0 };

/* Flags of navigator_request_events(). */
enum navigator_request_flags {
    /* The thread also follows the process's own state. This navigator sends the same events with and without it. */
    NAVIGATOR_EVENTS_EXTENDED = 1
};

/* ---- Events -------------------------------------------------------------------------------------------------- */

/* The domain of the navigator's events. Positive, the same for the life of the process; needs no device. */
PLATFORM_EXPORT int navigator_get_domain(void);

/* Asks for the navigator's events on the calling thread's queue, until navigator_stop_events() or the thread's last
 * tarn_shutdown(). The first request of a process makes it an application: its launch events follow at once.
 * Repeating the call changes nothing: no event comes twice. A further thread, or one that asks again after it had
 * stopped, is told the present state, and, where the application has been told of a rotation, its size and angle; of one
 * that is over, NAVIGATOR_ORIENTATION_DONE follows, and there is nothing to report.
 * flags: 0 or NAVIGATOR_EVENTS_EXTENDED; EINVAL for other bits, and where the thread has not called
 * tarn_initialize(). When the device goes away the request ends with it: call again once a device runs. */
PLATFORM_EXPORT int navigator_request_events(int flags);

/* Ends what navigator_request_events() began on the calling thread. Events that are pending stay on the queue.
 * The process stays an application. Succeeds without effect when nothing was requested; flags as there. */
PLATFORM_EXPORT int navigator_stop_events(int flags);

/* Readers. Numbers are TARN_FAILURE (-1), with errno EINVAL, where the event is NULL, of another domain or has no
 * such value. Texts are never NULL: empty in those cases, else the event's own storage, valid until the event is
 * destroyed. */

/* enum navigator_window_state, of NAVIGATOR_WINDOW_STATE. */
PLATFORM_EXPORT int navigator_event_get_window_state(const tarn_event_t *event);

/* The window group that the event is about, of NAVIGATOR_WINDOW_STATE, _ACTIVE and _INACTIVE. The text "none" means
 * no particular group of the process. */
PLATFORM_EXPORT const char *navigator_event_get_groupid(const tarn_event_t *event);

/* enum navigator_app_state, of NAVIGATOR_APP_STATE. */
PLATFORM_EXPORT int navigator_event_get_app_state(const tarn_event_t *event);

/* The id to answer with, of NAVIGATOR_POOLED and the events of a rotation. */
PLATFORM_EXPORT const char *navigator_event_get_id(const tarn_event_t *event);

/* enum navigator_severity, of NAVIGATOR_LOW_MEMORY. */
PLATFORM_EXPORT int navigator_event_get_severity(const tarn_event_t *event);

/* Degrees clockwise from the device's upright position (0, 90, 180, 270), of NAVIGATOR_ORIENTATION_CHECK,
 * NAVIGATOR_ORIENTATION and NAVIGATOR_ORIENTATION_DONE. */
PLATFORM_EXPORT int navigator_event_get_orientation_angle(const tarn_event_t *event);

/* Pixels, of NAVIGATOR_ORIENTATION_SIZE. */
PLATFORM_EXPORT int navigator_event_get_orientation_size_width(const tarn_event_t *event);
PLATFORM_EXPORT int navigator_event_get_orientation_size_height(const tarn_event_t *event);

/* ---- Life cycle ---------------------------------------------------------------------------------------------- */

/* Asks the navigator to close the application: its exit event follows. EINVAL when the process is no application. */
PLATFORM_EXPORT int navigator_close_window(void);

/* Asks for more time before a pending termination is enforced. EINVAL when none is pending; EPERM when the device
 * has granted as much as it will. */
PLATFORM_EXPORT int navigator_extend_terminate(void);

/* Sets the time in milliseconds that the application may take from its start to its first window. On failure, and
 * if errmsg is not NULL, *errmsg is set to the reason as text, or to NULL where there is none; the caller frees it
 * with tarn_free(). On success *errmsg is left as it was. EINVAL for a time out of the device's range; EPERM for an
 * application that is stopping. */
PLATFORM_EXPORT int navigator_extend_timeout(int timeout_ms, char **errmsg);

/* Answers the NAVIGATOR_POOLED event with that id. EINVAL when no such answer is awaited. */
PLATFORM_EXPORT int navigator_pooled_response(const char *id);

/* Sets the title and message (UTF-8) that a person is shown, to confirm or dismiss, before the application is
 * closed. Both may be empty. A new prompt replaces the old. */
PLATFORM_EXPORT int navigator_set_close_prompt(const char *title, const char *message);

/* Removes the close prompt. Succeeds without effect where none is set. */
PLATFORM_EXPORT int navigator_clear_close_prompt(void);

/* Sends length bytes of PPS text as a request of its own, named by its attribute "msg". The navigator knows
 * "minimizeWindow", which turns the application's window group in front (or else its main one) into a thumbnail. EINVAL for text that is
 * malformed or has no "msg"; ENOTSUP for another message; E2BIG beyond NAVIGATOR_MAX_TEXT bytes. */
PLATFORM_EXPORT int navigator_raw_write(const char *data, unsigned int length);

/* ---- Icon ---------------------------------------------------------------------------------------------------- */

/* Shows a badge (enum navigator_badge) on the application's icon; EINVAL for another value. */
PLATFORM_EXPORT int navigator_set_badge(int badge);

/* Removes the badge. Succeeds without effect where none is shown. */
PLATFORM_EXPORT int navigator_clear_badge(void);

/* ---- Orientation and gestures -------------------------------------------------------------------------------- */

/* Answers the NAVIGATOR_ORIENTATION_CHECK event with that id: true accepts the rotation. EINVAL when no such answer
 * is awaited. */
PLATFORM_EXPORT int navigator_orientation_check_response_id(const char *id, bool will_rotate);

/* Reports that the application has finished the rotation with that id. EINVAL when no such report is awaited. */
PLATFORM_EXPORT int navigator_done_orientation_id(const char *id);

/* Asks for the screen to be turned to angle degrees: 0, 90, 180 or 270, else EINVAL. The application is not asked back:
 * NAVIGATOR_ORIENTATION_SIZE and NAVIGATOR_ORIENTATION follow at once, also where the screen is at that angle already.
 * On success, and if id is not NULL, *id is the id that the rotation's events will carry; the caller frees it with
 * tarn_free(). EPERM for an application that is not in front, or is stopping; EBUSY while another rotation is under
 * way. */
PLATFORM_EXPORT int navigator_set_orientation(int angle, char **id);

/* Locks the screen's orientation, while the application is in front, against every rotation that it does not ask for
 * itself, or unlocks it. A rotation that is under way goes on. When an application that has locked it comes to the front
 * again, the screen turns to the angle that the application was last told. */
PLATFORM_EXPORT int navigator_rotation_lock(bool locked);

/* Asks for NAVIGATOR_SWIPE_START events; navigator_stop_swipe_start() ends that. */
PLATFORM_EXPORT int navigator_request_swipe_start(void);
PLATFORM_EXPORT int navigator_stop_swipe_start(void);

PLATFORM_END_DECLS

#endif
