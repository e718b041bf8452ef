// SPDX-License-Identifier: Apache-2.0
// Who may do what to an object: the owner, the group and the others by their three bits, the superuser
// everything.
#pragma once

#include "Store.h"

namespace kelp::device {

struct Permissions {
    mode_t mode = 0;
    uid_t uid = 0; // the creator's
    gid_t gid = 0;

    // wanted: R_OK, W_OK and X_OK, which are the values of the bits as well.
    bool allow(const Credentials &who, int wanted) const
    {
        if (who.uid == 0) {
            return true;
        }
        const unsigned shift = who.uid == uid ? 6 : who.gid == gid ? 3 : 0;
        const unsigned missing = static_cast<unsigned>(wanted) & ~(mode >> shift) & 7U;
        return missing == 0;
    }
};

} // namespace kelp::device
