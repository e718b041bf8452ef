// SPDX-License-Identifier: Apache-2.0
// The one table of what a person or a test can cause on the device, and of what an application can request of it,
// each with its name, its arguments and a line of help. The command line, and every other way to drive the device,
// is made from this table, and the navigator accepts just what stands in it.
#pragma once

#include "platform/link/Message.h"

#include <optional>
#include <span>
#include <string_view>

namespace kelp::device {

// Everything that a person or a test can cause.
enum class EventKind {
    FullScreen,
    Thumbnail,
    Invisible,
    Activate,
    Deactivate,
    OpenGroup,
    CloseGroup,
    LowMemory,
    Pool,
    Close,
    Confirm,
    Dismiss,
    Exit,
    Rotate,
    SwipeDown,
    Screen,
    Theme,
};

struct ArgumentSpec {
    std::string_view name;    // as in "--app"; a required one can also stand without its name
    std::string_view metavar; // what the help calls its value
    std::string_view help;
    bool required = false;
};

struct EventSpec {
    EventKind kind;
    std::string_view name; // on the command line
    std::string_view help;
    std::span<const ArgumentSpec> arguments;
};

// One value that a request carries.
struct RequestArgument {
    enum class Place { Number, First, Second }; // the member of link::Request that holds it

    std::string_view name;
    Place place;
    std::string_view help;
};

struct RequestSpec {
    link::RequestCode code;
    std::string_view name; // on the command line and in the trace
    std::string_view help;
    std::span<const RequestArgument> arguments; // in the order in which the trace tells them
};

std::span<const EventSpec> events();
std::span<const RequestSpec> requests();

const EventSpec *findEvent(std::string_view name);      // null: there is none
const RequestSpec *findRequest(std::string_view name);  // null: there is none
const RequestSpec *findRequest(link::RequestCode code); // null: the protocol has no such code
std::string_view requestName(link::RequestCode code);   // never empty for a code of the protocol

} // namespace kelp::device
