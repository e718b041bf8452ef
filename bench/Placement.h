// SPDX-License-Identifier: Apache-2.0
// Where a benchmark and all that it starts may run: as taskset(1) has left it.
#pragma once

#include <string>

namespace kelp::bench {

bool isOnOneCpu();

// "one CPU" or "any CPU".
std::string placement();

} // namespace kelp::bench
