// SPDX-License-Identifier: Apache-2.0
// What a thread keeps from one decoding to the next: names that it has met, and room for the text, which the platform
// parses in place. A decoder borrows it through a Lease; one that finds it lent out, or its thread at its end, gets one of
// its own.
#pragma once

#include "PpsKeyCache.h"

#include <memory>
#include <string>

namespace kelp {

struct PpsScratch {
    PpsKeyCache keys;
    std::string text;

    class Lease
    {
    public:
        Lease();
        ~Lease();
        Q_DISABLE_COPY(Lease)

        PpsScratch *operator->() const { return _scratch.get(); }

    private:
        std::unique_ptr<PpsScratch> _scratch;
    };
};

} // namespace kelp
