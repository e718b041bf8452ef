// SPDX-License-Identifier: Apache-2.0
// The processes that are the device's to start, to signal and to bury: the application that it was asked to run, and
// whatever that leaves behind, which becomes the device's own child. Only the kelp-device executable has one; the
// Device owns it.
#pragma once

#include <csignal>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/types.h>

namespace kelp::device {

// What to start.
struct Launch {
    std::vector<std::string> command;     // the program, sought in PATH, and its arguments; not empty
    std::vector<std::string> environment; // "NAME=value": set beside, or in place of, the device's own
    bool takesTerminal = false;           // the keyboard is the child's until it ends
};

// Why a program could not be started, with the exit code that env(1) gives then.
class LaunchError : public std::runtime_error
{
public:
    LaunchError(int exitCode, const std::string &sentence) : std::runtime_error(sentence), _exitCode(exitCode)
    {}
    int exitCode() const { return _exitCode; }

private:
    int _exitCode;
};

class ChildProcesses
{
public:
    // exitCode: the child's own, or 128 and the number of the signal that ended it.
    using Ended = std::function<void(pid_t child, int exitCode)>;

    // From now on orphaned descendants become children of this process, SIGPIPE is ignored in it, and it may have as many
    // descriptors as the system lets it: each object that a client has open takes one.
    ChildProcesses();
    ~ChildProcesses();
    ChildProcesses(const ChildProcesses &) = delete;
    ChildProcesses &operator=(const ChildProcesses &) = delete;

    // Starts a program as the leader of a process group of its own, with the signal mask, the dispositions and the
    // limit of descriptors that this process began with. A terminal on standard input is kept from it, unless it takes it over.
    // Throws LaunchError.
    pid_t launch(const Launch &launch);

    // Buries every child that has ended; to be called at each SIGCHLD. ended hears of those that launch() started.
    void reap(const Ended &ended);

    // Whether a child is left, launched or adopted.
    bool any() const { return _any; }

    // Sends a signal to every child that has not had it yet, with the process groups of those launched.
    void signalAll(int number);

private:
    [[noreturn]] void becomeProgram(char *const arguments[], char *const environment[], bool keepsTerminal,
                                    int report) const;
    void suspendWith(pid_t child);
    void lendTerminal();
    std::set<pid_t> present() const;

    std::set<pid_t> _launched;
    std::map<pid_t, int> _signalled; // the last signal that each child was sent
    pid_t _lentTo = 0;               // the child that has the terminal
    bool _any = false;
    sigset_t _maskBefore;
    struct sigaction _pipeBefore;
    rlimit _filesBefore;
};

} // namespace kelp::device
