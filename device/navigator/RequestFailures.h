// SPDX-License-Identifier: Apache-2.0
// Which requests are to fail on purpose, for whoever tests how an application takes it.
#pragma once

#include "platform/link/Message.h"

#include <map>
#include <optional>

namespace kelp::device {

class RequestFailures
{
public:
    // The next requests with that code fail with an errno: times of them, or all with times 0. error 0 ends
    // that.
    void set(link::RequestCode code, int error, unsigned times);

    // The errno with which the present request fails, and counts it; nothing where it is to be looked at.
    std::optional<int> take(link::RequestCode code);

private:
    struct Failure {
        int error;
        unsigned times; // still to come; 0: no end
    };
    std::map<link::RequestCode, Failure> _failures;
};

} // namespace kelp::device
