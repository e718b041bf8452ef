// SPDX-License-Identifier: Apache-2.0
// The words for the navigator's states: one for each, in the trace, in reports and on the command line.
#pragma once

namespace kelp::device {

const char *appStateName(int appState);       // enum navigator_app_state
const char *windowStateName(int windowState); // enum navigator_window_state
const char *badgeName(bool hasBadge);
const char *memorySeverityName(int severity);  // enum navigator_severity
const char *rotationPhaseName(bool isTurning); // of RotationState

} // namespace kelp::device
