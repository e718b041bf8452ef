// SPDX-License-Identifier: Apache-2.0
// The event behind tarn_event_t.
#pragma once

#include <tarn/tarn.h>

#include <memory>

struct tarn_event {
    int domain = 0;
    unsigned int code = 0;
    void *data = nullptr;              // what only the domain's readers understand
    void (*release)(void *) = nullptr; // ends data; may be null

    ~tarn_event()
    {
        if (release) {
            release(data);
        }
    }
};

namespace kelp::platform {

using Event = std::unique_ptr<tarn_event>;

} // namespace kelp::platform
