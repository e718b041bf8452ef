// SPDX-License-Identifier: Apache-2.0
// The events that the navigator sends, made and put into words. The numbers are those of the platform's
// interface.
#pragma once

#include "Screen.h"
#include "platform/link/Message.h"

#include <string>

namespace kelp::device {

link::Event appStateEvent(int appState);
link::Event windowStateEvent(const std::string &groupId, int windowState);
link::Event activeEvent(const std::string &groupId);
link::Event inactiveEvent(const std::string &groupId);
link::Event exitEvent();
link::Event lowMemoryEvent(int severity);
link::Event pooledEvent(const std::string &id);
link::Event orientationCheckEvent(const std::string &id, int angle);
link::Event orientationSizeEvent(const std::string &id, const ScreenSize &size);
link::Event orientationEvent(const std::string &id, int angle);
link::Event orientationDoneEvent(int angle);
link::Event swipeStartEvent();
link::Event swipeDownEvent();

// The event as the trace says it, such as "window-state thumbnail lifecycle/1".
std::string describe(const link::Event &event);

} // namespace kelp::device
