// SPDX-License-Identifier: Apache-2.0
// kelp-device pps set: publishes attributes in one change, all of them or none.

#include "AttributeLines.h"
#include "Failure.h"
#include "ObjectFile.h"
#include "PathArgument.h"
#include "PpsVerbs.h"

#include <iostream>

#include <fcntl.h>

namespace kelp::tool {

namespace {

struct SetOptions {
    std::string path;
    std::vector<std::string> settings;
    std::vector<std::string> deletions;
    bool takesExistingOnly = false;
    bool isRaw = false;

    std::string text() const;
};

std::string SetOptions::text() const
{
    std::string lines;
    for (const std::string &setting : settings) {
        lines += settingLine(setting);
    }
    for (const std::string &name : deletions) {
        lines += deletingLine(name);
    }
    return lines;
}

// No more than it takes to be refused.
std::string readInput(std::size_t mostBytes)
{
    std::string text(mostBytes + 1, '\0');
    std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (std::cin.bad()) {
        throw Failure(EXIT_REFUSED, "cannot read standard input: see what it is");
    }
    text.resize(static_cast<std::size_t>(std::cin.gcount()));
    return text;
}

int set(const SetOptions &options, const std::string &device)
{
    const std::string path = objectPath(options.path);
    std::string text = options.text(); // before anything is made
    useDevice(device);
    ObjectFile object(path, options.takesExistingOnly ? O_WRONLY : O_WRONLY | O_CREAT);
    if (options.isRaw) {
        text = readInput(object.mostBytes());
    }
    if (!text.empty()) {
        object.write(text);
    }
    return EXIT_HELD;
}

} // namespace

Action addPpsSet(const Command &verb, const DeviceOption &device)
{
    const auto options = std::make_shared<SetOptions>();
    verb.add("path", options->path, "The object's path, below /pps").required().typeName("PATH");
    const Parameter settings = verb.add("setting", options->settings, "What to set").typeName("NAME=VALUE");
    const Parameter deletions =
        verb.add("--delete", options->deletions, "Delete an attribute").typeName("NAME").oneValueEach();
    verb.addFlag("--existing", options->takesExistingOnly, "Fail if there is no such object");
    verb.addFlag("--raw", options->isRaw, "Write a PPS text from standard input")
        .excludes(settings)
        .excludes(deletions);
    verb.setFooter("VALUE: true, false, a number, or an array or object of JSON; all else is a string.\n"
                   "NAME:ENCODING:VALUE, as in label::5 for a string, sets an attribute by its PPS line.");
    return [device, options] {
        return set(*options, *device);
    };
}

} // namespace kelp::tool
