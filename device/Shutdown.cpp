// SPDX-License-Identifier: Apache-2.0
// See Shutdown.h.

#include "Shutdown.h"

#include <csignal>

namespace kelp::device {

Shutdown::Shutdown(Clock &clock, Navigator &navigator, SocketDoor &door, ChildProcesses *children,
                   const Settings &settings, std::function<void()> done)
    : _clock(clock),
      _navigator(navigator),
      _door(door),
      _children(children),
      _settings(settings),
      _done(std::move(done))
{}

void Shutdown::begin()
{
    if (_phase != Phase::NotBegun) {
        return;
    }
    _phase = Phase::Applications;
    if (_clock.isFrozen()) {
        _clock.setSpeed(1); // else no grace would ever be over
    }
    _door.refuseApplications();
    _hadApplications = !_navigator.applications().empty();
    _navigator.exitAll();
}

void Shutdown::request()
{
    if (_phase == Phase::NotBegun) {
        return begin();
    }
    if (_phase != Phase::Done) {
        enter(Phase::Killing);
        _door.signalAll(SIGKILL);
    }
}

void Shutdown::step()
{
    if (_phase == Phase::Applications && applicationsAreThrough()) {
        // A process is not over yet when it is no application any more. Where none was one, nobody is leaving.
        enter(_hadApplications ? Phase::Leaving : Phase::Terminating);
    }
    if (!waitsForChildren()) {
        return;
    }
    if (_clock.now() >= _phaseEnds) {
        goOn();
    }
    if (!hasChildren() || _phase == Phase::Done) {
        _phase = Phase::Done;
        return _done();
    }
    if (_phase != Phase::Leaving) {
        _children->signalAll(_phase == Phase::Killing ? SIGKILL
                                                      : SIGTERM); // those too that became ours meanwhile
    }
}

std::optional<Time> Shutdown::nextDeadline() const
{
    return waitsForChildren() ? std::optional<Time>(_phaseEnds) : std::nullopt;
}

// Whether each has gone, or there is nothing left that would make it go.
bool Shutdown::applicationsAreThrough() const
{
    return !_navigator.nextDeadline() || _navigator.applications().empty();
}

void Shutdown::enter(Phase phase)
{
    _phase = phase;
    _phaseEnds = _clock.now() + (phase == Phase::Leaving ? _settings.grace : _settings.killDelay);
}

// The time of a phase that waits for children is up.
void Shutdown::goOn()
{
    switch (_phase) {
    case Phase::Leaving:
        return enter(Phase::Terminating);
    case Phase::Terminating:
        return enter(Phase::Killing);
    default:
        _phase = Phase::Done;
    }
}

} // namespace kelp::device
