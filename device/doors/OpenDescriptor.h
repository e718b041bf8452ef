// SPDX-License-Identifier: Apache-2.0
// A descriptor of the store that a client process has open: the device's ends of what the two share.
#pragma once

#include "WakePair.h"
#include "device/loop/EventLoop.h"
#include "device/store/Store.h"
#include "platform/link/Slot.h"

#include <optional>

namespace kelp::device {

struct OpenDescriptor {
    DescriptorId id = 0;
    std::uint32_t client = 0;             // ProcessId of whose it is
    std::optional<link::SlotWriter> slot; // a subscriber's
    link::UniqueFd wakeEnd;
    EventLoop::Watch watch; // of the client's hang-up; after the descriptor: it must end first
};

} // namespace kelp::device
