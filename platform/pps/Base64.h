// SPDX-License-Identifier: Apache-2.0
// Text in base 64, undone for the decoder where it stands.
#pragma once

namespace kelp::pps {

// From there up to end; the text then ends with a NUL there or before. False where it is malformed or not
// UTF-8.
bool undoBase64(char *from, char *end);

} // namespace kelp::pps
