// SPDX-License-Identifier: Apache-2.0
// See ControlGroupFolders.h.

#include "ControlGroupFolders.h"

#include "KernelText.h"

#include <optional>

namespace kelp::platform {

namespace {

constexpr std::string_view UPWARDS = "/..";

// The process's group in the hierarchy of a version, as its control group namespace names it.
std::optional<std::string_view> groupIn(ControlGroupVersion version, std::string_view groups)
{
    while (!groups.empty()) {
        std::string_view group = takeUpTo(groups, '\n');
        (void)takeUpTo(group, ':'); // the hierarchy's number
        std::string_view controllers = takeUpTo(group, ':');
        if (version == ControlGroupVersion::V2 && controllers.empty()) {
            return group;
        }
        while (version == ControlGroupVersion::V1 && !controllers.empty()) {
            if (takeUpTo(controllers, ',') == "memory") {
                return group;
            }
        }
    }
    return std::nullopt;
}

// Takes the steps that lead out of the namespace off the beginning of a group's path, and counts them.
int takeUpwardSteps(std::string_view &path)
{
    int steps = 0;
    while (path.starts_with(UPWARDS) && (path.size() == UPWARDS.size() || path[UPWARDS.size()] == '/')) {
        path.remove_prefix(UPWARDS.size());
        ++steps;
    }
    return steps;
}

// The path from a mount's root to a group, "" or starting with a slash; nothing for a group that is not below
// the root. Where the root is so far above the namespace that the names in between are unknown, the root
// alone is known.
std::optional<std::string_view> pathBelow(std::string_view root, std::string_view group)
{
    const int rootSteps = takeUpwardSteps(root);
    const int groupSteps = takeUpwardSteps(group);
    root = root == "/" ? "" : root;
    group = group == "/" ? "" : group;
    if (rootSteps > groupSteps && root.empty()) {
        return "";
    }
    if (rootSteps != groupSteps || !group.starts_with(root)) {
        return std::nullopt;
    }
    group.remove_prefix(root.size());
    if (!group.empty() && group.front() != '/') {
        return std::nullopt; // a sibling whose name begins alike
    }
    return group;
}

// Adds the folder of a group and of each of its ancestors up to the mount's root.
void addBranch(const ControlGroupMount &mount, std::string_view path,
               std::vector<ControlGroupFolder> &folders)
{
    for (; !path.empty(); path = path.substr(0, path.rfind('/'))) {
        folders.push_back({mount.version, mount.point + std::string(path)});
    }
    folders.push_back({mount.version, mount.point});
}

} // namespace

std::vector<ControlGroupFolder> controlGroupFolders(std::string_view groups, std::string_view mounts)
{
    std::vector<ControlGroupFolder> folders;
    while (!mounts.empty()) {
        const auto mount = ControlGroupMount::parse(takeUpTo(mounts, '\n'));
        const auto group = mount ? groupIn(mount->version, groups) : std::nullopt;
        const auto path = group ? pathBelow(mount->root, *group) : std::nullopt;
        if (path) {
            addBranch(*mount, *path, folders);
        }
    }
    return folders;
}

} // namespace kelp::platform
