// SPDX-License-Identifier: Apache-2.0
// kelp-device pps get: an object as it is now, or one of its attributes.

#include "Failure.h"
#include "ObjectFile.h"
#include "ObjectJson.h"
#include "PathArgument.h"
#include "PpsVerbs.h"

#include <iostream>

#include <fcntl.h>

namespace kelp::tool {

namespace {

// The whole object: one that is open anew has not been read yet.
std::string textOf(const std::string &path)
{
    if (path.ends_with("/.all")) {
        throw Failure(EXIT_USAGE, path + " stands for many objects: `kelp-device pps watch` shows them");
    }
    std::string text = ObjectFile(path, O_RDONLY).read();
    if (text.empty()) {
        throw Failure(EXIT_REFUSED, path + " has no attributes, only messages: an application serves it");
    }
    return text;
}

std::string valueIn(const std::string &path, const std::string &name)
{
    const auto value = attributeValue(textOf(path), name);
    if (!value) {
        throw Failure(EXIT_REFUSED, path + " has no attribute \"" + name + "\": `kelp-device pps get " +
                                        path + "` shows those it has");
    }
    return *value + '\n';
}

std::string asJson(const std::string &path)
{
    std::string text;
    for (const std::string &line : objectsAsJson(textOf(path))) {
        text += line + '\n';
    }
    return text;
}

} // namespace

Action addPpsGet(const Command &verb, const DeviceOption &device)
{
    struct Options {
        std::string path;
        std::string attribute;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    verb.add("path", options->path, "The object's path, below /pps").required().typeName("PATH");
    const Parameter attribute = verb.add("attribute", options->attribute,
                                         "Print its value alone: a string as it is, any other as JSON")
                                    .typeName("ATTRIBUTE");
    verb.addFlag("--json", options->json, "As JSON, with the values decoded").excludes(attribute);
    return [device, options, attribute] {
        const std::string path = objectPath(options->path);
        useDevice(*device);
        if (attribute.isGiven()) {
            std::cout << valueIn(path, options->attribute);
        } else {
            std::cout << (options->json ? asJson(path) : textOf(path));
        }
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
