// SPDX-License-Identifier: Apache-2.0
// What the command line can ask of a running device, each a verb with named arguments: the socket door brings them,
// the navigator and the Device carry them out.
#pragma once

#include "device/navigator/Navigator.h"
#include "platform/link/Message.h"

#include <functional>
#include <string>

namespace kelp::device {

class ControlCommands
{
public:
    // What the Device does itself.
    struct Device {
        std::function<std::string()> status; // the device's line of the state
        std::function<std::string()> state;
        std::function<void()> stop;
        std::function<Outcome(const std::string &)> listObjects; // of the directory at a path below "/pps"
    };

    ControlCommands(Navigator &navigator, Device device);

    // Carries out a command. EINVAL for an unknown verb or for arguments that the verb does not have.
    Outcome run(const link::Command &command) const;

private:
    struct Verb;
    static const Verb VERBS[];

    Outcome event(const link::Command &command) const;
    Outcome fail(const link::Command &command) const;
    Outcome objects(const link::Command &command) const;
    Outcome state(const link::Command &command) const;
    Outcome status(const link::Command &command) const;
    Outcome stop(const link::Command &command) const;

    Navigator &_navigator;
    Device _device;
};

} // namespace kelp::device
