// SPDX-License-Identifier: Apache-2.0
// The device's end, in order: the applications are asked to exit and have their grace; the device's own children may
// finish what the applications' end has left to do; those that stay get SIGTERM, and a little later SIGKILL; then it is
// done. Asked once more, it kills at once. The Device owns it and calls step() before each wait.
#pragma once

#include "device/clock/Clock.h"
#include "device/doors/SocketDoor.h"
#include "device/navigator/Navigator.h"
#include "device/process/ChildProcesses.h"

#include <functional>
#include <optional>

namespace kelp::device {

class Shutdown
{
public:
    // children may be null: then there are none. Of the settings, grace is how long the children may stay when the
    // applications have gone, and killDelay the time from SIGTERM to SIGKILL, and from there to giving up on a child
    // that cannot be killed.
    Shutdown(Clock &clock, Navigator &navigator, SocketDoor &door, ChildProcesses *children,
             const Settings &settings, std::function<void()> done);

    // Begins, unless it is under way.
    void begin();

    // Somebody asks for the end: begins, or, when it is under way, kills whatever is left.
    void request();

    // Goes on where that is possible; calls done once, when nothing is left to wait for.
    void step();

    std::optional<Time> nextDeadline() const;

private:
    enum class Phase { NotBegun, Applications, Leaving, Terminating, Killing, Done };
    bool applicationsAreThrough() const;
    bool hasChildren() const { return _children && _children->any(); }
    bool waitsForChildren() const { return _phase > Phase::Applications && _phase < Phase::Done; }
    void enter(Phase phase);
    void goOn();

    Clock &_clock;
    Navigator &_navigator;
    SocketDoor &_door;
    ChildProcesses *_children;
    Settings _settings;
    std::function<void()> _done;
    Phase _phase = Phase::NotBegun;
    bool _hadApplications = false;
    Time _phaseEnds{0}; // while waitsForChildren()
};

} // namespace kelp::device
