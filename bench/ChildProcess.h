// SPDX-License-Identifier: Apache-2.0
// A process that a benchmark starts, whose output it reads, and that ends with its owner.
#pragma once

#include "platform/link/UniqueFd.h"

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kelp::bench {

class ChildProcess
{
public:
    // command: a path, or a name to be looked for, and the arguments. Throws std::system_error.
    explicit ChildProcess(std::vector<std::string> command);

    // Runs some work in a fork() of this process, which ends with it. It gets the descriptor of its output.
    ChildProcess(std::string name, const std::function<void(int)> &work);

    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    // Reads that many bytes of its output. Throws std::runtime_error when it ends before.
    void read(void *bytes, std::size_t size);

    // Reads the next line of its output, and returns it without the line feed. Throws as read().
    std::string readLine();

    // Waits for its end. Throws std::runtime_error unless its exit code is 0.
    void finish();

    pid_t pid() const { return _pid; }

private:
    link::UniqueFd openOutput();

    std::string _name;
    link::UniqueFd _output;
    pid_t _pid = 0; // 0: it has ended
};

// The path of a program that is built beside the running one.
std::string siblingProgram(const std::string &name);

} // namespace kelp::bench
