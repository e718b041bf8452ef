// SPDX-License-Identifier: Apache-2.0
// See EventCheck.h.

#include "EventCheck.h"

#include "Failure.h"

namespace kelp::tool {

void checkEvent(const device::EventSpec &event, const device::ArgumentTexts &arguments)
{
    const auto checked = device::checkArguments(event, arguments);
    if (const auto *refusal = std::get_if<device::Outcome>(&checked)) {
        throw Failure(EXIT_USAGE, refusal->text);
    }
}

} // namespace kelp::tool
