// SPDX-License-Identifier: Apache-2.0
// The real PPS codec with a fault in it: of the calls that can fail, the one at which the countdown ends does so.
#pragma once

namespace FailingCodec {

inline int countdown = 0; // calls until then; 0 also where none is to fail any more
inline int alive = 0;     // encoders and decoders that have not been cleaned up

} // namespace FailingCodec
