// SPDX-License-Identifier: Apache-2.0
// What the command line's exit codes mean, and the exception that carries one to main() with its message.
#pragma once

#include <stdexcept>
#include <string>

namespace kelp::tool {

enum ExitCode {
    EXIT_HELD = 0,      // all held
    EXIT_REFUSED = 1,   // the device refused
    EXIT_USAGE = 2,     // wrong usage
    EXIT_NO_DEVICE = 3, // there is no device to ask
    EXIT_CRASHED = 4,   // run with a scenario: a signal ended the application
    EXIT_TIME_OUT = 124,
    EXIT_SET_UP = 125, // run: the device itself could not be set up
};

// Ends the program with an exit code and, on standard error, a sentence that says what to do.
class Failure : public std::runtime_error
{
public:
    Failure(int exitCode, const std::string &sentence) : std::runtime_error(sentence), _exitCode(exitCode) {}
    int exitCode() const { return _exitCode; }

private:
    int _exitCode;
};

} // namespace kelp::tool
