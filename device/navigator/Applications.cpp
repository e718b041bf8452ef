// SPDX-License-Identifier: Apache-2.0
// Keeps the records and finds the free ids. Called by the navigator and whoever looks for an application.
#include "Applications.h"

#include <algorithm>

namespace kelp::device {

Application &Applications::add(pid_t pid, const std::string &name)
{
    const ProcessId process = ++_lastProcess;
    return _processes.try_emplace(process, process, pid, name).first->second;
}

void Applications::remove(ProcessId process)
{
    std::erase(_launched, find(process));
    _processes.erase(process);
}

Application *Applications::find(ProcessId process)
{
    const auto entry = _processes.find(process);
    return entry == _processes.end() ? nullptr : &entry->second;
}

void Applications::launch(Application &application)
{
    application.launch(freeId(application.name()));
    const unsigned number = freeGroupNumber(application);
    application.useGroupNumber(number);
    application.addGroup(application.groupId(number));
    _launched.push_back(&application);
    ++_launches;
}

Application *Applications::findLaunched(std::string_view id) const
{
    const auto application =
        std::find_if(_launched.begin(), _launched.end(),
                     [id](const Application *candidate) { return candidate->id() == id; });
    return application == _launched.end() ? nullptr : *application;
}

Application *Applications::ownerOf(std::string_view groupId) const
{
    const auto owner =
        std::find_if(_launched.begin(), _launched.end(), [groupId](const Application *candidate) {
            return candidate->findGroup(groupId) != nullptr;
        });
    return owner == _launched.end() ? nullptr : *owner;
}

Application *Applications::inFront() const
{
    const auto found = std::find_if(_launched.begin(), _launched.end(), [](const Application *candidate) {
        return candidate->fullScreenGroup() && !candidate->isStopping();
    });
    return found == _launched.end() ? nullptr : *found;
}

unsigned Applications::freeGroupNumber(const Application &application) const
{
    unsigned number = application.lastGroupNumber() + 1;
    while (ownerOf(application.groupId(number))) {
        ++number;
    }
    return number;
}

std::string Applications::freeId(const std::string &name) const
{
    std::string id = name;
    for (unsigned number = 2; findLaunched(id); ++number) {
        id = name + '-' + std::to_string(number);
    }
    return id;
}

} // namespace kelp::device
