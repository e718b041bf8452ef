// SPDX-License-Identifier: Apache-2.0
// See Placement.h.

#include "Placement.h"

#include <sched.h>

namespace kelp::bench {

bool isOnOneCpu()
{
    cpu_set_t cpus;
    return ::sched_getaffinity(0, sizeof cpus, &cpus) == 0 && CPU_COUNT(&cpus) == 1;
}

std::string placement()
{
    return isOnOneCpu() ? "one CPU" : "any CPU";
}

} // namespace kelp::bench
