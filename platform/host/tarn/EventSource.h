// SPDX-License-Identifier: Apache-2.0
// A service that delivers events to a thread's queue through a descriptor of its own.
#pragma once

#include "Event.h"

namespace kelp::platform {

class EventSource
{
public:
    virtual ~EventSource() = default;

    // Readable while take() would give an event or the source has ended. The same for the source's life.
    virtual int descriptor() const = 0;

    // The next event that has arrived; none when nothing is there. Sets ended when nothing will come any more.
    virtual Event take(bool &ended) = 0;

    // Whether the service has gone, even if events that it sent before are still to be taken.
    virtual bool hasEnded() const = 0;
};

} // namespace kelp::platform
