// SPDX-License-Identifier: Apache-2.0
// Any bytes are either refused or a message whose encoding they are: nothing is read past their end, nothing is
// dropped, and no two texts of bytes mean the same message.

#include "platform/link/Message.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    const auto message = kelp::link::decode(bytes);
    if (message && kelp::link::encode(*message) != bytes) {
        std::abort();
    }
    return 0;
}
