// SPDX-License-Identifier: Apache-2.0
// The choice, and the reasons with the ids that could be chosen. Called for every command that is about an
// application.
#include "Targets.h"

#include "ClientText.h"

#include <cerrno>

namespace kelp::device {

namespace {

void append(std::string &list, const std::string &item)
{
    list += (list.empty() ? "" : ", ") + item;
}

std::string idsOf(const std::vector<Application *> &applications)
{
    std::string ids;
    for (const Application *application : applications) {
        append(ids, application->id());
    }
    return ids;
}

std::string groupsOf(const std::vector<Application *> &applications)
{
    std::string ids;
    for (const Application *application : applications) {
        for (const WindowGroup &group : application->groups()) {
            append(ids, group.id);
        }
    }
    return ids;
}

Outcome refuseGroup(const std::vector<Application *> &applications, const std::string &group)
{
    return {ESRCH, "no window group " + inQuotes(group) + " is open in " + idsOf(applications) +
                       ": choose one of " + groupsOf(applications)};
}

// Null where none can be chosen; refusal is then the reason, and else of no meaning.
Application *chooseApplication(const Applications &applications, const EventArguments &arguments,
                               Outcome &refusal)
{
    const std::vector<Application *> &launched = applications.launched();
    refusal = requireApplication(applications);
    if (refusal.error != 0) {
        return nullptr;
    }
    if (arguments.app) {
        refusal = {ESRCH,
                   "no application " + inQuotes(*arguments.app) + " runs: choose one of " + idsOf(launched)};
        return applications.findLaunched(*arguments.app);
    }
    if (arguments.group) {
        refusal = refuseGroup(launched, *arguments.group);
        return applications.ownerOf(*arguments.group);
    }
    refusal = {EINVAL, "several applications run: name one with --app: " + idsOf(launched)};
    return launched.size() == 1 ? launched.front() : nullptr;
}

} // namespace

Outcome requireApplication(const Applications &applications)
{
    if (applications.launched().empty()) {
        return {ESRCH,
                "no application runs on this device yet: start one with KELP_DEVICE set to its directory"};
    }
    return {};
}

std::variant<Target, Outcome> chooseTarget(const Applications &applications, const EventArguments &arguments)
{
    Outcome refusal;
    Application *application = chooseApplication(applications, arguments, refusal);
    if (!application) {
        return refusal;
    }
    if (!arguments.group) {
        return Target{application, &application->groups().front()};
    }
    const WindowGroup *group = application->findGroup(*arguments.group);
    if (!group) {
        return refuseGroup({application}, *arguments.group);
    }
    return Target{application, group};
}

} // namespace kelp::device
