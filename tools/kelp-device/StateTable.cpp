// SPDX-License-Identifier: Apache-2.0
// See StateTable.h.

#include "StateTable.h"

#include "Failure.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>
#include <vector>

namespace kelp::tool {

namespace {

using Json = nlohmann::json;
using Row = std::vector<std::string>;

// Calls with each line's object, and turns what is missing in it into a Failure.
template <typename Use>
void forEachObject(const std::string &report, Use use)
{
    try {
        std::istringstream lines(report);
        for (std::string line; std::getline(lines, line);) {
            use(Json::parse(line));
        }
    } catch (const Json::exception &error) {
        throw Failure(EXIT_REFUSED,
                      std::string("the device's report cannot be read, it is of another release: ") +
                          error.what());
    }
}

std::string seconds(const Json &milliseconds)
{
    std::ostringstream text;
    text.setf(std::ios::fixed);
    text.precision(1);
    text << milliseconds.get<double>() / 1000 << " s";
    return text.str();
}

// A client's text on one line, and without what would drive the terminal.
std::string printable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](unsigned char character) { return character < 0x20 || character == 0x7f; }, '?');
    return text;
}

std::string promptOf(const Json &prompt)
{
    if (prompt.is_null()) {
        return "-";
    }
    const std::string text = printable(prompt.at("title")) + ": " + printable(prompt.at("message"));
    return (prompt.at("shown").get<bool>() ? "shown, " : "set, ") + text;
}

std::string deadlinesOf(const Json &application)
{
    std::string text;
    for (const Json &deadline : application.at("deadlines")) {
        const std::string id = printable(deadline.at("id"));
        text += (text.empty() ? "" : ", ") + printable(deadline.at("name")) + (id.empty() ? "" : " " + id) +
                " in " + seconds(deadline.at("remainingMs"));
    }
    return text.empty() ? "-" : text;
}

// One row a window group; what is the application's own stands in the first.
void addApplication(std::vector<Row> &rows, const Json &application)
{
    Row row{printable(application.at("id")),
            application.at("pid").dump(),
            application.at("processState"),
            "-",
            "-",
            deadlinesOf(application),
            promptOf(application.at("closePrompt"))};
    for (const Json &group : application.at("windowGroups")) {
        row[3] = printable(group.at("id"));
        row[4] =
            group.at("windowState").get<std::string>() + (group.at("active").get<bool>() ? ", active" : "");
        rows.push_back(row);
        row = Row(row.size());
    }
    if (!row[0].empty()) {
        rows.push_back(row);
    }
}

std::string aligned(const std::vector<Row> &rows)
{
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row &row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    std::string text;
    for (const Row &row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += row[column] + std::string(widths[column] - row[column].size() + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
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
    std::vector<Row> rows{{"APPLICATION", "PID", "PROCESS", "GROUP", "WINDOW", "DEADLINES", "CLOSE PROMPT"}};
    forEachObject(report, [&rows](const Json &object) {
        if (object.at("type") == "application") {
            addApplication(rows, object);
        }
    });
    return rows.size() > 1 ? aligned(rows) : "No application runs.\n";
}

} // namespace kelp::tool
