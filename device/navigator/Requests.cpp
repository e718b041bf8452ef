// SPDX-License-Identifier: Apache-2.0
// One case a request. What a process that is no application may ask is decided here, once for all.
#include "Requests.h"

#include "ClientText.h"
#include "RawRequest.h"
#include "device/catalogue/Catalogue.h"

#include <cerrno>

namespace kelp::device {

namespace {

using link::RequestCode;

bool needsApplication(RequestCode code)
{
    return code == RequestCode::CloseWindow || code == RequestCode::ExtendTerminate ||
           code == RequestCode::ExtendTimeout || code == RequestCode::PooledResponse ||
           code == RequestCode::OrientationCheckResponse || code == RequestCode::DoneOrientation ||
           code == RequestCode::SetOrientation;
}

Outcome refuseOutsider(const std::string &what)
{
    return {EINVAL, what + " is for applications: ask for the navigator's events first"};
}

std::string valueText(const link::Request &request, RequestArgument::Place place)
{
    switch (place) {
    case RequestArgument::Place::Number:
        return std::to_string(request.number);
    case RequestArgument::Place::First:
        return inQuotes(request.first);
    case RequestArgument::Place::Second:
        return inQuotes(request.second);
    }
    return {};
}

} // namespace

Outcome Requests::handle(Application &application, const link::Request &request)
{
    if (needsApplication(request.code) && !application.isLaunched()) {
        return refuseOutsider(std::string(requestName(request.code)));
    }
    return carryOut(application, request);
}

Outcome Requests::carryOut(Application &application, const link::Request &request)
{
    switch (request.code) {
    case RequestCode::CloseWindow:
        return _exitPath.begin(application);
    case RequestCode::ExtendTerminate:
        return _exitPath.extend(application);
    case RequestCode::ExtendTimeout:
        return extendTimeout(application, request.number);
    case RequestCode::PooledResponse:
        return _pooling.answer(application, request.first);
    case RequestCode::SetClosePrompt:
        return setClosePrompt(application, request);
    case RequestCode::ClearClosePrompt:
        return clearClosePrompt(application);
    case RequestCode::RawWrite:
        return rawWrite(application, request.first);
    case RequestCode::SetBadge:
        return setBadge(application, request.number);
    case RequestCode::ClearBadge:
        application.setBadge(false);
        return {};
    case RequestCode::OrientationCheckResponse:
        return _rotation.answer(application, request.first, request.number != 0);
    case RequestCode::DoneOrientation:
        return _rotation.done(application, request.first);
    case RequestCode::SetOrientation:
        return _rotation.request(application, request.number);
    case RequestCode::RotationLock:
        application.lockOrientation(request.number != 0);
        return {};
    case RequestCode::RequestSwipeStart:
    case RequestCode::StopSwipeStart:
        application.wantSwipeStart(request.code == RequestCode::RequestSwipeStart);
        return {};
    }
    return {EINVAL,
            "there is no request with the code " + std::to_string(static_cast<unsigned>(request.code))};
}

Outcome Requests::setBadge(Application &application, std::int32_t badge)
{
    if (badge != NAVIGATOR_BADGE_SPLAT) {
        return {EINVAL, "there is no badge " + std::to_string(badge) + ": the only one is 0, the splat"};
    }
    application.setBadge(true);
    return {};
}

Outcome Requests::extendTimeout(Application &application, std::int32_t timeoutMs)
{
    const std::chrono::milliseconds timeout(timeoutMs);
    if (timeout < std::chrono::milliseconds(1) || timeout > _settings.maxWindowCreation) {
        const auto most = std::chrono::duration_cast<std::chrono::milliseconds>(_settings.maxWindowCreation);
        return {EINVAL, "the first window may take 1 to " + std::to_string(most.count()) + " ms, not " +
                            std::to_string(timeoutMs)};
    }
    if (application.isStopping()) {
        return {EPERM, application.id() + " is stopping: it opens no first window any more"};
    }
    application.setWindowCreationTimeout(timeout);
    _journal.note(application, "window creation may take " + secondsText(timeout));
    return {};
}

Outcome Requests::setClosePrompt(Application &application, const link::Request &request)
{
    if (!isUtf8(request.first) || !isUtf8(request.second)) {
        return {EINVAL, "the close prompt is not UTF-8: encode its title and message so"};
    }
    application.setClosePrompt(request.first, request.second);
    return {};
}

Outcome Requests::clearClosePrompt(Application &application)
{
    if (application.isPromptShown()) {
        _journal.note(application, "close prompt withdrawn: the application removed it");
    }
    application.clearClosePrompt();
    return {};
}

Outcome Requests::rawWrite(Application &application, const std::string &text)
{
    const std::optional<std::string> message = messageOfRawRequest(text);
    if (!message) {
        return {EINVAL,
                "not a PPS text with the attribute msg: write lines name:encoding:value, each with its line "
                "feed, and msg as text"};
    }
    if (*message != "minimizeWindow") {
        return {ENOTSUP,
                "the message " + inQuotes(*message) + " is unknown: the navigator knows minimizeWindow"};
    }
    return minimise(application);
}

Outcome Requests::minimise(Application &application)
{
    if (!application.isLaunched()) {
        return refuseOutsider("minimizeWindow");
    }
    const WindowGroup *inFront = application.fullScreenGroup();
    return _windows.stepBack(application, inFront ? *inFront : application.groups().front(),
                             NAVIGATOR_WINDOW_THUMBNAIL);
}

std::string describe(const link::Request &request)
{
    std::string line(requestName(request.code));
    const RequestSpec *spec = findRequest(request.code);
    for (const RequestArgument &argument : spec ? spec->arguments : std::span<const RequestArgument>()) {
        line += ' ' + valueText(request, argument.place);
    }
    return line;
}

} // namespace kelp::device
