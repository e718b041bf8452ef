// SPDX-License-Identifier: Apache-2.0
// A program that a test runs, with pipes on its standard streams. Every wait ends after test::WAIT_TIME with an
// exception; a program that still runs at the end of its Command is killed.
#pragma once

#include "platform/link/UniqueFd.h"

#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace kelp::test {

struct Result {
    int exitCode = -1; // 128 and the signal's number for one that a signal ended
    std::string output;
    std::string errors;
};

class Command
{
public:
    using Environment = std::vector<std::pair<std::string, std::string>>; // beside the test's own

    explicit Command(const std::vector<std::string> &command, const Environment &environment = {});
    ~Command();
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    pid_t pid() const { return _pid; }
    void signal(int number) const;
    void writeInput(const std::string &text);
    void closeInput() { _input.reset(); }

    // The rest of the next line of output that begins with that word, which must come.
    std::string awaitLine(const std::string &word);

    // Waits for the program's end. Its input is closed first, and its output is read until it is closed.
    Result finish();

    // Starts and finishes.
    static Result run(const std::vector<std::string> &command, const Environment &environment = {});

private:
    bool readMore();

    pid_t _pid = 0; // 0: finished
    link::UniqueFd _input;
    link::UniqueFd _output;
    link::UniqueFd _errors;    // a file
    std::string _read;         // all output so far
    std::size_t _consumed = 0; // of it, by awaitLine()
};

// A null-terminated array of C strings that lives as long as the texts do.
std::vector<char *> pointersTo(const std::vector<std::string> &texts);

// kelp-device with these arguments.
std::vector<std::string> kelpDevice(std::vector<std::string> arguments);

// Whether there is (not) a process with that number, ended but unburied ones included.
bool processExists(pid_t pid);

} // namespace kelp::test
