// SPDX-License-Identifier: Apache-2.0
// See Calls.h.

#include "Calls.h"

#include <map>
#include <stdexcept>
#include <utility>

namespace kelp::bench {

namespace {

constexpr int ROUNDS = 25;
constexpr double ROUND_SECONDS = 0.02;

// Keeps the time of each round and prints nothing.
class Collector : public benchmark::BenchmarkReporter
{
public:
    std::map<std::string, Samples *> samples;

    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.error_occurred) {
                throw std::runtime_error(run.run_name.function_name + ": " + run.error_message);
            }
            if (run.run_type == Run::RT_Iteration) {
                samples.at(run.run_name.function_name)->add(run.GetAdjustedRealTime());
            }
        }
    }
};

Collector s_collector;

} // namespace

void measure(const std::string &name, Samples &samples, std::function<void(benchmark::State &)> work)
{
    s_collector.samples[name] = &samples;
    benchmark::RegisterBenchmark(name.c_str(), std::move(work))
        ->UseRealTime()
        ->Repetitions(ROUNDS)
        ->MinTime(ROUND_SECONDS);
}

void runCalls()
{
    std::string program = "bench";
    std::string inTurns = "--benchmark_enable_random_interleaving=true";
    char *arguments[] = {program.data(), inTurns.data(), nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks(&s_collector);
}

} // namespace kelp::bench
