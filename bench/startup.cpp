// SPDX-License-Identifier: Apache-2.0
// How much longer does an application take to start because it is one of the device's?
//
// Measures whole processes, from posix_spawn() until waitpid() returns: an Application on a running device
// that leaves its event loop at its first awake(), and one that leaves it at once, beside a bare
// QCoreApplication that leaves it at once (the peer). The programs take turns.
//
// Guards: at most 1.5 times the bare one.
//
//     kelp-device run -- startup [RUNS]    of each program, 300 by default

#include "ChildProcess.h"
#include "Comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace kelp::bench;

namespace {

constexpr int WARM_UP = 10;

double millisecondsOf(const std::vector<std::string> &command)
{
    const auto begun = std::chrono::steady_clock::now();
    ChildProcess(command).finish();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count();
}

void comparePrograms(int runs)
{
    if (!std::getenv("KELP_DEVICE")) {
        throw std::runtime_error("there is no device: run this with kelp-device run -- PROGRAM");
    }
    Comparison comparison("start-up", "ms");
    const struct {
        std::vector<std::string> command;
        Samples &samples;
    } programs[] = {
        {{siblingProgram("bench_application"), "awake"}, comparison.add("to the first awake()", {1.5, 0})},
        {{siblingProgram("bench_application"), "once"}, comparison.add("into the event loop", {1.5, 0})},
        {{siblingProgram("bench_bare")}, comparison.addPeer("bare QCoreApplication")}};
    for (int i = 0; i < WARM_UP + runs; ++i) {
        for (const auto &program : programs) {
            const double milliseconds = millisecondsOf(program.command);
            if (i >= WARM_UP) {
                program.samples.add(milliseconds);
            }
        }
    }
    comparison.print();
}

} // namespace

int main(int argc, char **argv)
{
    try {
        comparePrograms(argc > 1 ? std::max(std::atoi(argv[1]), 1) : 300);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "startup: %s\n", error.what());
        return 1;
    }
}
