// SPDX-License-Identifier: Apache-2.0
// kelp-device pps ls: what is in a directory of objects.

#include "DeviceClient.h"
#include "DeviceLocation.h"
#include "Failure.h"
#include "PathArgument.h"
#include "PpsVerbs.h"
#include "Report.h"
#include "TextTable.h"

#include <nlohmann/json.hpp>

#include <iostream>

#include <pwd.h>

namespace kelp::tool {

namespace {

using Json = nlohmann::json;

bool isDirectory(const Json &entry)
{
    return entry.at("type") == "directory";
}

std::string nameOf(const Json &entry)
{
    return printable(entry.at("name")) + (isDirectory(entry) ? "/" : "");
}

std::string ownerOf(const Json &entry)
{
    const auto uid = entry.at("uid").get<uid_t>();
    const passwd *user = ::getpwuid(uid); // NOLINT(concurrency-mt-unsafe): there is one thread
    return user ? user->pw_name : std::to_string(uid);
}

std::string names(const std::string &report)
{
    std::string text;
    forEachObject(report, [&text](const Json &entry) { text += nameOf(entry) + '\n'; });
    return text;
}

std::string table(const std::string &report)
{
    std::vector<Row> rows;
    forEachObject(report, [&rows](const Json &entry) {
        const std::string size = isDirectory(entry) ? "-" : entry.at("sizeBytes").dump();
        rows.push_back({entry.at("mode"), ownerOf(entry), size, nameOf(entry)});
    });
    return aligned(rows);
}

} // namespace

Action addPpsList(const Command &verb, const DeviceOption &device)
{
    struct Options {
        std::string path = "/";
        bool isLong = false;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    verb.add("path", options->path, "The directory's path, below /pps").typeName("PATH").showsDefault();
    const Parameter isLong =
        verb.addFlag("-l,--long", options->isLong, "With the mode, the owner and the size in bytes");
    verb.addFlag("--json", options->json, "As JSON, one object a line").excludes(isLong);
    return [device, options] {
        const std::string path = objectPath(options->path);
        DeviceClient client(deviceDirectory(*device));
        const std::string report = client.ask("objects", {{"path", path}});
        if (options->json) {
            std::cout << report;
        } else {
            std::cout << (options->isLong ? table(report) : names(report));
        }
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
