// SPDX-License-Identifier: Apache-2.0
// Every connected process, and the applications among them in the order of their launches. It gives out the
// ids that are unique on the device.
#pragma once

#include "Application.h"

#include <map>

namespace kelp::device {

class Applications
{
public:
    Application &add(pid_t pid, const std::string &name);
    void remove(ProcessId process);
    Application *find(ProcessId process); // null: not connected

    // Makes the process an application with a unique id and its main window group.
    void launch(Application &application);

    const std::vector<Application *> &launched() const { return _launched; }
    std::size_t launches() const { return _launches; }    // ever, with those of processes that have gone
    Application *findLaunched(std::string_view id) const; // null: there is none
    Application *ownerOf(std::string_view groupId) const; // null: there is no such group

    // The one that a person at the screen deals with: it has a full-screen group and is not stopping. Null: there is
    // none.
    Application *inFront() const;

    // The number of the application's next window group, passing over ids that are in use.
    unsigned freeGroupNumber(const Application &application) const;

private:
    std::string freeId(const std::string &name) const;

    std::map<ProcessId, Application> _processes; // by number; the records stay where they are
    std::vector<Application *> _launched;        // into _processes
    ProcessId _lastProcess = 0;
    std::size_t _launches = 0;
};

} // namespace kelp::device
