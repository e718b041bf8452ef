// SPDX-License-Identifier: Apache-2.0
// A program that a benchmark starts, whose standard output it reads, and that ends with its owner.
#pragma once

#include "platform/link/UniqueFd.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace kelp::bench {

class ChildProcess
{
public:
    // command: a path, or a name to be looked for, and the arguments. Throws std::system_error.
    explicit ChildProcess(std::vector<std::string> command);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    // Reads that many bytes of its output. Throws std::runtime_error when it ends before.
    void read(void *bytes, std::size_t size);

    // Waits for its end. Throws std::runtime_error unless its exit code is 0.
    void finish();

private:
    std::string _name;
    link::UniqueFd _output;
    pid_t _pid = 0; // 0: it has ended
};

// The path of a program that is built beside the running one.
std::string siblingProgram(const std::string &name);

} // namespace kelp::bench
