// SPDX-License-Identifier: Apache-2.0
// The tables. A new event or request is a row here and a case in the navigator, and nothing else names it.
#include "Catalogue.h"

#include <algorithm>
#include <array>

namespace kelp::device {

namespace {

using link::RequestCode;

constexpr ArgumentSpec APP = {"app", "ID", "the application; needed only where several run"};
constexpr ArgumentSpec EVERY_APP = {"app", "ID", "the application; without it, every one"};
constexpr ArgumentSpec GROUP = {"group", "ID", "the window group; without it, the application's main one"};

constexpr std::array WINDOW_ARGUMENTS = {APP, GROUP};
constexpr std::array APP_ARGUMENTS = {APP};
constexpr std::array OPEN_GROUP_ARGUMENTS = {
    APP,
    ArgumentSpec{"id", "TEXT", "the new group's id: 1 to 255 printable ASCII characters, and not \"none\""}};
constexpr std::array CLOSE_GROUP_ARGUMENTS = {ArgumentSpec{"group", "ID", "the window group", true}};
constexpr std::array LOW_MEMORY_ARGUMENTS = {
    ArgumentSpec{"severity", "SEVERITY", "0 (enough again), 1 (low) or 2 (critical)", true}, EVERY_APP};
constexpr std::array ROTATE_ARGUMENTS = {
    ArgumentSpec{"angle", "ANGLE", "0, 90, 180 or 270: degrees clockwise from upright", true}};
constexpr std::array SWIPE_ARGUMENTS = {
    ArgumentSpec{"app", "ID", "the application, which must be in front; without it, the one that is"}};
constexpr std::array SCREEN_ARGUMENTS = {
    ArgumentSpec{"size", "WIDTHxHEIGHT", "pixels when held upright, 1 to 16384 each, as in 768x1280", true}};
constexpr std::array THEME_ARGUMENTS = {ArgumentSpec{"theme", "NAME", "bright or dark", true}};

constexpr std::array EVENTS = {
    EventSpec{EventKind::FullScreen, "fullscreen",
              "Bring a window group to the front, full screen and active", WINDOW_ARGUMENTS},
    EventSpec{EventKind::Thumbnail, "thumbnail", "Turn a window group into a thumbnail", WINDOW_ARGUMENTS},
    EventSpec{EventKind::Invisible, "invisible", "Hide a window group", WINDOW_ARGUMENTS},
    EventSpec{EventKind::Activate, "activate", "Give the input focus to a full-screen window group",
              WINDOW_ARGUMENTS},
    EventSpec{EventKind::Deactivate, "deactivate", "Take the input focus from a full-screen window group",
              WINDOW_ARGUMENTS},
    EventSpec{EventKind::OpenGroup, "open-group", "Open another window group, full screen and active",
              OPEN_GROUP_ARGUMENTS},
    EventSpec{EventKind::CloseGroup, "close-group", "Close a window group that is not the application's last",
              CLOSE_GROUP_ARGUMENTS},
    EventSpec{EventKind::LowMemory, "low-memory", "Say how short memory is", LOW_MEMORY_ARGUMENTS},
    EventSpec{EventKind::Pool, "pool", "Pool an application and await its answer", APP_ARGUMENTS},
    EventSpec{EventKind::Close, "close",
              "Close an application as a person does: its close prompt comes first", APP_ARGUMENTS},
    EventSpec{EventKind::Confirm, "confirm", "Confirm the close prompt that is shown", APP_ARGUMENTS},
    EventSpec{EventKind::Dismiss, "dismiss", "Dismiss the close prompt that is shown", APP_ARGUMENTS},
    EventSpec{EventKind::Exit, "exit", "Have an application exit, whatever its close prompt", APP_ARGUMENTS},
    EventSpec{EventKind::Rotate, "rotate", "Turn the device: the application in front is asked first",
              ROTATE_ARGUMENTS},
    EventSpec{EventKind::SwipeDown, "swipe-down", "Swipe down from the top edge of the screen",
              SWIPE_ARGUMENTS},
    EventSpec{EventKind::Screen, "screen", "Give the device a screen of another size", SCREEN_ARGUMENTS},
    EventSpec{EventKind::Theme, "theme", "Give the device another theme", THEME_ARGUMENTS},
};

using Place = RequestArgument::Place;
constexpr std::array TIMEOUT = {RequestArgument{"timeout", Place::Number, "milliseconds"}};
constexpr std::array POOLED = {RequestArgument{"id", Place::First, "of the pooled event"}};
constexpr std::array PROMPT = {RequestArgument{"title", Place::First, "UTF-8"},
                               RequestArgument{"message", Place::Second, "UTF-8"}};
constexpr std::array RAW = {RequestArgument{"text", Place::First, "PPS text"}};
constexpr std::array BADGE = {RequestArgument{"badge", Place::Number, "0, the splat"}};
constexpr std::array CHECK_RESPONSE = {
    RequestArgument{"id", Place::First, "of the orientation-check event"},
    RequestArgument{"accept", Place::Number, "1 accepts the rotation, 0 refuses it"}};
constexpr std::array DONE = {RequestArgument{"id", Place::First, "of the orientation event"}};
constexpr std::array ORIENTATION = {RequestArgument{"angle", Place::Number, "degrees: 0, 90, 180 or 270"}};
constexpr std::array LOCK = {RequestArgument{"locked", Place::Number, "1 locks, 0 unlocks"}};

constexpr std::array REQUESTS = {
    RequestSpec{RequestCode::CloseWindow, "close-window", "Close the application", {}},
    RequestSpec{RequestCode::ExtendTerminate, "extend-terminate", "More time before it is ended", {}},
    RequestSpec{RequestCode::ExtendTimeout, "extend-timeout", "The time that its first window may take",
                TIMEOUT},
    RequestSpec{RequestCode::PooledResponse, "pooled-response", "The answer to a pooling", POOLED},
    RequestSpec{RequestCode::SetClosePrompt, "set-close-prompt",
                "Set what a person is asked before it closes", PROMPT},
    RequestSpec{RequestCode::ClearClosePrompt, "clear-close-prompt", "Remove the close prompt", {}},
    RequestSpec{RequestCode::RawWrite, "raw-write", "A request in PPS text, such as to minimise the window",
                RAW},
    RequestSpec{RequestCode::SetBadge, "set-badge", "Show a badge on the icon", BADGE},
    RequestSpec{RequestCode::ClearBadge, "clear-badge", "Remove the badge", {}},
    RequestSpec{RequestCode::OrientationCheckResponse, "orientation-check-response",
                "Accept or refuse a rotation", CHECK_RESPONSE},
    RequestSpec{RequestCode::DoneOrientation, "done-orientation", "A rotation is finished", DONE},
    RequestSpec{RequestCode::SetOrientation, "set-orientation", "Turn the screen", ORIENTATION},
    RequestSpec{RequestCode::RotationLock, "rotation-lock", "Lock or unlock the screen's orientation", LOCK},
    RequestSpec{RequestCode::RequestSwipeStart, "request-swipe-start", "Ask for the start of swipes", {}},
    RequestSpec{RequestCode::StopSwipeStart, "stop-swipe-start", "Ask for the start of swipes no more", {}},
};
static_assert(REQUESTS.size() == link::LAST_REQUEST_CODE, "a request has no name");

template <typename Table, typename Matches>
auto find(const Table &table, Matches matches) -> decltype(table.data())
{
    const auto row = std::find_if(table.begin(), table.end(), matches);
    return row == table.end() ? nullptr : &*row;
}

} // namespace

std::span<const EventSpec> events()
{
    return EVENTS;
}

std::span<const RequestSpec> requests()
{
    return REQUESTS;
}

const EventSpec *findEvent(std::string_view name)
{
    return find(EVENTS, [name](const EventSpec &spec) { return spec.name == name; });
}

const RequestSpec *findRequest(std::string_view name)
{
    return find(REQUESTS, [name](const RequestSpec &spec) { return spec.name == name; });
}

const RequestSpec *findRequest(link::RequestCode code)
{
    return find(REQUESTS, [code](const RequestSpec &spec) { return spec.code == code; });
}

std::string_view requestName(link::RequestCode code)
{
    const RequestSpec *spec = findRequest(code);
    return spec ? spec->name : "unknown-request";
}

} // namespace kelp::device
