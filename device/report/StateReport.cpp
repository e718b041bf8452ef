// SPDX-License-Identifier: Apache-2.0
// See StateReport.h.

#include "StateReport.h"

#include "device/navigator/StateNames.h"

#include <navigator/navigator.h>

#include <nlohmann/json.hpp>

namespace kelp::device {

namespace {

using Json = nlohmann::ordered_json; // members in the order in which they are documented

std::int64_t milliseconds(Duration duration)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
}

Json windowGroups(const ApplicationState &application)
{
    Json groups = Json::array();
    for (const WindowGroupState &group : application.groups) {
        groups.push_back({{"id", group.id},
                          {"windowState", windowStateName(group.windowState)},
                          {"active", group.active}});
    }
    return groups;
}

Json closePrompt(const ApplicationState &application)
{
    if (!application.hasClosePrompt) {
        return nullptr;
    }
    return {{"title", application.promptTitle},
            {"message", application.promptMessage},
            {"shown", application.promptShown}};
}

Json deadlines(const ApplicationState &application)
{
    Json pending = Json::array();
    for (const DeadlineState &deadline : application.deadlines) {
        pending.push_back({{"name", deadline.name},
                           {"id", deadline.id},
                           {"remainingMs", milliseconds(deadline.remaining)}});
    }
    return pending;
}

Json rotation(const ApplicationState &application)
{
    if (!application.rotation) {
        return nullptr;
    }
    return {{"id", application.rotation->id},
            {"angle", application.rotation->angle},
            {"phase", rotationPhaseName(application.rotation->isTurning)}};
}

Json labelJson(const std::string &label)
{
    return label.empty() ? Json(nullptr) : Json(label);
}

Json screenJson(const Screen &screen)
{
    return {{"width", screen.properties.size.width},
            {"height", screen.properties.size.height},
            {"theme", screen.properties.theme},
            {"angle", screen.angle}};
}

Json applicationJson(const ApplicationState &application)
{
    const std::int64_t windowCreation = milliseconds(application.windowCreationTimeout);
    return {{"type", "application"},
            {"id", application.id},
            {"title", labelJson(application.label.title)},
            {"version", labelJson(application.label.version)},
            {"pid", application.pid},
            {"processState", appStateName(application.appState)},
            {"windowGroups", windowGroups(application)},
            {"closePrompt", closePrompt(application)},
            {"windowCreationTimeoutMs", windowCreation ? Json(windowCreation) : Json(nullptr)},
            {"deadlines", deadlines(application)},
            {"badge", badgeName(application.hasBadge)},
            {"orientationLocked", application.isOrientationLocked},
            {"swipeStart", application.wantsSwipeStart},
            {"rotation", rotation(application)}};
}

std::string line(const Json &json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace

std::string deviceReport(const DeviceState &device)
{
    return line({{"type", "device"},
                 {"pid", device.pid},
                 {"directory", device.directory},
                 {"uptimeMs", milliseconds(device.clock.now())},
                 {"clock", {{"speed", device.clock.speed()}, {"frozen", device.clock.isFrozen()}}},
                 {"screen", screenJson(device.screen)},
                 {"memoryPressure", device.memorySeverity ? Json(*device.memorySeverity) : Json(nullptr)},
                 {"launches", device.launches},
                 {"applications", device.applications}});
}

std::string stateReport(const DeviceState &device, const std::vector<ApplicationState> &applications)
{
    std::string report = deviceReport(device);
    for (const ApplicationState &application : applications) {
        report += line(applicationJson(application));
    }
    return report;
}

} // namespace kelp::device
