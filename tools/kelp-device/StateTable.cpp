// SPDX-License-Identifier: Apache-2.0
// See StateTable.h.

#include "StateTable.h"

#include "Report.h"
#include "TextTable.h"
#include "device/navigator/StateNames.h"

#include <nlohmann/json.hpp>

#include <sstream>
#include <vector>

namespace kelp::tool {

namespace {

using Json = nlohmann::json;

std::string seconds(const Json &milliseconds)
{
    std::ostringstream text;
    text.setf(std::ios::fixed);
    text.precision(1);
    text << milliseconds.get<double>() / 1000 << " s";
    return text.str();
}

// As in "Notes 1.2.3.4".
std::string titleOf(const Json &application)
{
    std::string text;
    for (const char *name : {"title", "version"}) {
        if (const Json &part = application.at(name); !part.is_null()) {
            text += (text.empty() ? "" : " ") + printable(part);
        }
    }
    return text.empty() ? "-" : text;
}

std::string promptOf(const Json &prompt)
{
    if (prompt.is_null()) {
        return "-";
    }
    const std::string text = printable(prompt.at("title")) + ": " + printable(prompt.at("message"));
    return (prompt.at("shown").get<bool>() ? "shown, " : "set, ") + text;
}

void append(std::string &list, const std::string &item)
{
    list += (list.empty() ? "" : ", ") + item;
}

std::string deadlinesOf(const Json &application)
{
    std::string text;
    for (const Json &deadline : application.at("deadlines")) {
        const std::string id = printable(deadline.at("id"));
        append(text, printable(deadline.at("name")) + (id.empty() ? "" : " " + id) + " in " +
                         seconds(deadline.at("remainingMs")));
    }
    return text.empty() ? "-" : text;
}

// What the application has set, beside its close prompt.
std::string settingsOf(const Json &application)
{
    std::string text;
    if (application.at("badge") != "none") {
        append(text, "badge " + printable(application.at("badge")));
    }
    if (application.at("orientationLocked").get<bool>()) {
        append(text, "orientation lock");
    }
    if (application.at("swipeStart").get<bool>()) {
        append(text, "swipe start");
    }
    if (const Json &timeout = application.at("windowCreationTimeoutMs"); !timeout.is_null()) {
        append(text, "first window in " + seconds(timeout));
    }
    return text.empty() ? "-" : text;
}

std::string rotationOf(const Json &application)
{
    const Json &rotation = application.at("rotation");
    if (rotation.is_null()) {
        return "-";
    }
    return printable(rotation.at("phase")) + ' ' + rotation.at("angle").dump();
}

std::string deviceLines(const Json &device)
{
    const Json &screen = device.at("screen");
    const Json &severity = device.at("memoryPressure");
    const std::string memory =
        severity.is_null()
            ? ""
            : "Memory pressure: " + std::string(device::memorySeverityName(severity.get<int>())) + ".\n";
    return "Screen " + screen.at("width").dump() + 'x' + screen.at("height").dump() + ", " +
           printable(screen.at("theme")) + ", at " + screen.at("angle").dump() + " degrees.\n" + memory;
}

// One row a window group; what is the application's own stands in the first.
void addApplication(std::vector<Row> &rows, const Json &application)
{
    constexpr std::size_t GROUP = 4; // its column
    constexpr std::size_t WINDOW = 5;
    Row row{printable(application.at("id")),
            titleOf(application),
            application.at("pid").dump(),
            application.at("processState"),
            "-",
            "-",
            deadlinesOf(application),
            rotationOf(application),
            settingsOf(application),
            promptOf(application.at("closePrompt"))};
    for (const Json &group : application.at("windowGroups")) {
        row[GROUP] = printable(group.at("id"));
        row[WINDOW] =
            group.at("windowState").get<std::string>() + (group.at("active").get<bool>() ? ", active" : "");
        rows.push_back(row);
        row = Row(row.size());
    }
    if (!row[0].empty()) {
        rows.push_back(row);
    }
}

} // namespace

std::string statusText(const std::string &report)
{
    std::string text;
    forEachObject(report, [&text](const Json &device) {
        text += "A device runs in " + printable(device.at("directory")) + ": pid " + device.at("pid").dump() +
                ", up " + seconds(device.at("uptimeMs")) +
                ", applications: " + device.at("applications").dump() + ".\n";
    });
    return text;
}

std::string stateTable(const std::string &report)
{
    std::vector<Row> rows{{"APPLICATION", "TITLE", "PID", "PROCESS", "GROUP", "WINDOW", "DEADLINES",
                           "ROTATION", "SET", "CLOSE PROMPT"}};
    std::string device;
    forEachObject(report, [&](const Json &object) {
        if (object.at("type") == "application") {
            addApplication(rows, object);
        } else {
            device = deviceLines(object);
        }
    });
    return (rows.size() > 1 ? aligned(rows) : "No application runs.\n") + device;
}

} // namespace kelp::tool
