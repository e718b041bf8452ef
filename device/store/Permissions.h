// SPDX-License-Identifier: Apache-2.0
// Who may do what to an object: the owner, the group and the others by their three bits, the superuser
// everything; but what is reserved only the device itself may write.
#pragma once

#include "Store.h"

#include <unistd.h>

namespace kelp::device {

struct Permissions {
    mode_t mode = 0;
    uid_t uid = 0; // the creator's
    gid_t gid = 0;
    bool isReserved = false; // the creator is the device

    // wanted: R_OK, W_OK and X_OK, which are the values of the bits as well.
    bool allow(const Credentials &who, int wanted) const
    {
        if (isReserved && !who.isDevice && (wanted & W_OK) != 0) {
            return false;
        }
        if (who.uid == 0) {
            return true;
        }
        const unsigned shift = who.uid == uid ? 6 : who.gid == gid ? 3 : 0;
        const unsigned missing = static_cast<unsigned>(wanted) & ~(mode >> shift) & 7U;
        return missing == 0;
    }
};

} // namespace kelp::device
