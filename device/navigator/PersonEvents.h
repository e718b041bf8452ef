// SPDX-License-Identifier: Apache-2.0
// What a person or a test causes: chooses whom it is for, and hands it to who carries it out.
#pragma once

#include "ExitPath.h"
#include "LowMemory.h"
#include "Pooling.h"
#include "Rotation.h"
#include "Targets.h"
#include "Windows.h"

namespace kelp::device {

class PersonEvents
{
public:
    PersonEvents(const Applications &applications, Screen &screen, Windows &windows, ExitPath &exitPath,
                 Pooling &pooling, Rotation &rotation, LowMemory &lowMemory, Delivery &delivery,
                 Journal &journal)
        : _applications(applications),
          _screen(screen),
          _windows(windows),
          _exitPath(exitPath),
          _pooling(pooling),
          _rotation(rotation),
          _lowMemory(lowMemory),
          _delivery(delivery),
          _journal(journal)
    {}

    // name and arguments as they come: neither has been checked.
    Outcome handle(const std::string &name, const ArgumentTexts &arguments);

private:
    Outcome handleForTarget(EventKind kind, const Target &target, const EventArguments &arguments);
    // Nothing where the event is for one application.
    std::optional<Outcome> handleForDevice(EventKind kind, const EventArguments &arguments);
    Outcome swipeDown(const EventArguments &arguments);
    Outcome tellLowMemory(const EventArguments &arguments);
    Outcome close(Application &application);
    Outcome confirm(Application &application);
    Outcome dismiss(Application &application);

    const Applications &_applications;
    Screen &_screen;
    Windows &_windows;
    ExitPath &_exitPath;
    Pooling &_pooling;
    Rotation &_rotation;
    LowMemory &_lowMemory;
    Delivery &_delivery;
    Journal &_journal;
};

// The command as the trace says it.
std::string describe(const std::string &name, const ArgumentTexts &arguments);

} // namespace kelp::device
