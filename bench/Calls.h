// SPDX-License-Identifier: Apache-2.0
// Measures single calls with Google Benchmark, in turns, so that what disturbs the machine disturbs all of
// them alike.
#pragma once

#include "Comparison.h"

#include <benchmark/benchmark.h>

#include <functional>

namespace kelp::bench {

// Puts a function among those that runCalls() measures.
void measure(const std::string &name, Samples &samples, std::function<void(benchmark::State &)> work);

// Runs them in several rounds, in random order. Each round adds the nanoseconds of an iteration to the
// samples.
void runCalls();

} // namespace kelp::bench
