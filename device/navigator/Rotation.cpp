// SPDX-License-Identifier: Apache-2.0
// The hand-shake's steps: each checks who speaks and of what, delivers, and only then moves on. Called for requests,
// for commands, and by the navigator when a time is up or windows have moved.
#include "Rotation.h"

#include "ClientText.h"
#include "NavigatorEvents.h"

#include <cerrno>
#include <utility>

namespace kelp::device {

namespace {

std::string degrees(int angle)
{
    return std::to_string(angle) + " degrees";
}

DeadlineKind kindOf(bool isTurning)
{
    return isTurning ? DeadlineKind::OrientationDone : DeadlineKind::OrientationCheck;
}

Outcome refuseAnswer(const std::string &what, const std::string &id, const std::string &event)
{
    return {EINVAL, "no " + what + " to " + inQuotes(id) + " is awaited: give the id of the " + event +
                        " event, once and in time"};
}

} // namespace

// Why none can begin.
std::optional<Outcome> Rotation::refusal() const
{
    if (!_pending) {
        return std::nullopt;
    }
    return Outcome{EBUSY, _pending->id + " to " + degrees(_pending->angle) + " is under way with " +
                              _pending->application->id() + ": try again when it is over"};
}

std::string Rotation::nextId() const
{
    return "rotation-" + std::to_string(_lastNumber + 1);
}

Outcome Rotation::turnDevice(int angle)
{
    if (const auto busy = refusal()) {
        return *busy;
    }
    if (angle == _screen.angle) {
        return {0, "nothing changes: the screen is at " + degrees(angle) + " already"};
    }
    Application *inFront = _applications.inFront();
    if (inFront && (inFront->isOrientationLocked() || _delivery.reaches(*inFront))) {
        return ask(*inFront, angle);
    }
    _screen.angle = angle; // whoever is in front follows when things settle
    const std::string reason =
        inFront ? inFront->id() + " takes no events" : "no application is in front to be asked";
    return {0, reason + ": the screen is at " + degrees(angle)};
}

Outcome Rotation::ask(Application &application, int angle)
{
    if (application.isOrientationLocked()) {
        return {EPERM, application.id() +
                           " has locked the orientation: it has to unlock it, or to ask for the "
                           "rotation itself"};
    }
    const Pending asked = {&application, nextId(), angle, false};
    Outcome sent = _delivery.deliver({{&application, orientationCheckEvent(asked.id, angle)}});
    if (sent.error != 0) {
        return sent;
    }
    ++_lastNumber;
    await(asked, _settings.orientationCheckTimeout);
    return {0, asked.id};
}

Outcome Rotation::request(Application &application, int angle)
{
    if (!isAngle(angle)) {
        return {EINVAL, "the screen turns to 0, 90, 180 or 270 degrees, not to " + std::to_string(angle)};
    }
    if (_applications.inFront() != &application) {
        return {EPERM, application.id() +
                           " is not in front, or is exiting: only the application in front turns the screen"};
    }
    if (const auto busy = refusal()) {
        return *busy;
    }
    return begin(application, angle);
}

Outcome Rotation::begin(Application &application, int angle)
{
    const std::string id = nextId();
    Outcome turned = turn(application, id, angle);
    if (turned.error != 0) {
        return turned;
    }
    ++_lastNumber;
    return {0, id};
}

Outcome Rotation::turn(Application &application, const std::string &id, int angle)
{
    const ScreenSize size = sizeAt(_screen.properties.size, angle);
    Outcome sent = _delivery.deliver(
        {{&application, orientationSizeEvent(id, size)}, {&application, orientationEvent(id, angle)}});
    if (sent.error != 0) {
        return sent;
    }
    _screen.angle = angle;
    _pending.reset();
    if (_delivery.reaches(application)) { // else nobody is there to report the end
        await({&application, id, angle, true}, _settings.orientationDoneTimeout);
    }
    return {};
}

void Rotation::await(const Pending &pending, Duration time)
{
    const ProcessId process = pending.application->process();
    _pending = pending;
    _deadlines.set({_clock.now() + time, process, kindOf(pending.isTurning), pending.id});
}

Rotation::Pending Rotation::take()
{
    Pending ended = *std::exchange(_pending, std::nullopt);
    // Where the time is up the deadline has been taken already.
    (void)_deadlines.remove(ended.application->process(), kindOf(ended.isTurning), ended.id);
    return ended;
}

bool Rotation::isAwaited(const Application &application, const std::string &id, bool isTurning) const
{
    return _pending && _pending->application == &application && _pending->id == id &&
           _pending->isTurning == isTurning;
}

Outcome Rotation::answer(Application &application, const std::string &id, bool accepts)
{
    if (!isAwaited(application, id, false)) {
        return refuseAnswer("answer", id, "orientation-check");
    }
    if (!accepts) {
        (void)take(); // nobody is told: the application knows
        _journal.note(application, id + " refused: the screen stays at " + degrees(_screen.angle));
        return {};
    }
    Outcome turned = turn(application, id, _pending->angle);
    if (turned.error == 0) {
        (void)_deadlines.remove(application.process(), DeadlineKind::OrientationCheck, id); // has been kept
        _journal.note(application, id + " accepted: the screen is at " + degrees(_screen.angle));
    }
    return turned;
}

Outcome Rotation::done(Application &application, const std::string &id)
{
    if (!isAwaited(application, id, true)) {
        return refuseAnswer("report of the end", id, "orientation");
    }
    Outcome sent = _delivery.deliver({{&application, orientationDoneEvent(_pending->angle)}});
    if (sent.error == 0) {
        (void)take(); // all of it has been told
        _journal.note(application, id + " is done");
    }
    return sent;
}

void Rotation::checkReached(const Application &application)
{
    const Pending ended = take();
    _journal.note(application, "orientation-check reached: no answer to " + ended.id +
                                   " in time, the screen stays at " + degrees(_screen.angle));
}

void Rotation::turnReached(Application &application)
{
    const Pending ended = take();
    _journal.note(application, "orientation-done reached: " + ended.id + " is over all the same");
    _delivery.deliverWhatFits({{&application, orientationDoneEvent(ended.angle)}});
}

void Rotation::settle()
{
    endForWhoHasLeft();
    Application *inFront = _applications.inFront();
    if (_pending || !inFront || inFront->orientation().angle == _screen.angle) {
        return;
    }
    if (!inFront->isOrientationLocked()) {
        (void)begin(*inFront, _screen.angle); // one without room for it is told when things settle again
        return;
    }
    _screen.angle = inFront->orientation().angle;
    _journal.note(*inFront, "has locked the orientation: the screen turns to " + degrees(_screen.angle));
}

void Rotation::endForWhoHasLeft()
{
    if (!_pending || _applications.inFront() == _pending->application) {
        return;
    }
    const Pending ended = take();
    _journal.note(*ended.application,
                  ended.id + " ends: it is in front no more, the screen is at " + degrees(_screen.angle));
    if (ended.isTurning) {
        _delivery.deliverWhatFits({{ended.application, orientationDoneEvent(ended.angle)}});
    }
}

void Rotation::tellState(const Application &application, ChannelId channel)
{
    const ToldOrientation &told = application.orientation();
    if (told.rotation.empty()) {
        return; // it knows of no other angle than the first
    }
    const ScreenSize size = sizeAt(_screen.properties.size, told.angle);
    _delivery.tell(channel, application, orientationSizeEvent(told.rotation, size));
    _delivery.tell(channel, application, orientationEvent(told.rotation, told.angle));
    if (!isAwaited(application, told.rotation, true)) {
        _delivery.tell(channel, application, orientationDoneEvent(told.angle));
    }
}

void Rotation::forget(const Application &application)
{
    if (_pending && _pending->application == &application) {
        const Pending ended = take();
        _journal.note(application, ended.id + " ends with it: the screen is at " + degrees(_screen.angle));
    }
}

std::optional<RotationState> Rotation::of(const Application &application) const
{
    if (!_pending || _pending->application != &application) {
        return std::nullopt;
    }
    return RotationState{_pending->id, _pending->angle, _pending->isTurning};
}

} // namespace kelp::device
