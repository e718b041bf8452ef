// SPDX-License-Identifier: Apache-2.0
// kelp-device pps rm: deletes objects; one that cannot be deleted does not keep the others.

#include "Failure.h"
#include "ObjectFile.h"
#include "PathArgument.h"
#include "PpsVerbs.h"

namespace kelp::tool {

namespace {

void removeAll(const std::vector<std::string> &given)
{
    std::string complaints;
    int exitCode = EXIT_HELD;
    for (const std::string &one : given) {
        try {
            deleteObject(objectPath(one));
        } catch (const Failure &failure) {
            complaints += (complaints.empty() ? "" : "\nkelp-device: ") + std::string(failure.what());
            exitCode = exitCode == EXIT_HELD ? failure.exitCode() : exitCode;
        }
    }
    if (exitCode != EXIT_HELD) {
        throw Failure(exitCode, complaints);
    }
}

} // namespace

Action addPpsRemove(const Command &verb, const DeviceOption &device)
{
    const auto paths = std::make_shared<std::vector<std::string>>();
    verb.add("path", *paths, "The objects' paths, below /pps").required().typeName("PATH");
    return [device, paths] {
        useDevice(*device);
        removeAll(*paths);
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
