// SPDX-License-Identifier: Apache-2.0
// The rotation of the screen: a hand-shake with the application in front, one at a time. It is asked whether it can
// follow, told its next size and angle, and given time to lay itself out anew. An application that asks for the
// rotation itself is not asked back.
//
// The screen has turned once the application has accepted; what ends a rotation later does not turn it back. Who comes
// to the front of a screen that has been turned meanwhile is told, under an id of its own and without being asked; who
// has locked the orientation keeps its angle, and the screen turns to that. One that takes no events is neither asked
// nor waited for.
#pragma once

#include "Applications.h"
#include "Deadlines.h"
#include "Delivery.h"
#include "Screen.h"

namespace kelp::device {

class Rotation
{
public:
    Rotation(const Clock &clock, const Settings &settings, const Applications &applications, Screen &screen,
             Delivery &delivery, Deadlines &deadlines, Journal &journal)
        : _clock(clock),
          _settings(settings),
          _applications(applications),
          _screen(screen),
          _delivery(delivery),
          _deadlines(deadlines),
          _journal(journal)
    {}

    // A person turns the device. The result's text is the rotation's id, or says why there is none.
    Outcome turnDevice(int angle);

    // An application asks for it; the result's text is the rotation's id. angle is unchecked.
    Outcome request(Application &application, int angle);

    Outcome answer(Application &application, const std::string &id, bool accepts);
    Outcome done(Application &application, const std::string &id);
    void checkReached(const Application &application);
    void turnReached(Application &application);

    // After anything that may have changed who is in front: ends the rotation of an application that has left the
    // screen, or begun to exit, and brings screen and application in front to the same angle.
    void settle();

    // Tells one channel the size and the angle that the application has been told last, if it has been told any.
    void tellState(const Application &application, ChannelId channel);

    // Ends the rotation of a process that is no more there.
    void forget(const Application &application);

    // The one that is under way with the application.
    std::optional<RotationState> of(const Application &application) const;

private:
    struct Pending {
        Application *application; // never null
        std::string id;
        int angle;
        bool isTurning; // it has been accepted
    };

    std::optional<Outcome> refusal() const;
    std::string nextId() const;
    Outcome ask(Application &application, int angle);
    Outcome begin(Application &application, int angle); // without asking; the result's text is the new id
    void endForWhoHasLeft();
    Outcome turn(Application &application, const std::string &id, int angle);
    void await(const Pending &pending, Duration time);
    Pending take(); // it is over
    bool isAwaited(const Application &application, const std::string &id, bool isTurning) const;

    const Clock &_clock;
    const Settings &_settings;
    const Applications &_applications;
    Screen &_screen;
    Delivery &_delivery;
    Deadlines &_deadlines;
    Journal &_journal;
    std::optional<Pending> _pending;
    unsigned _lastNumber = 0; // of an id, on this device
};

} // namespace kelp::device
