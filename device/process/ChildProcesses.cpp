// SPDX-License-Identifier: Apache-2.0
// See ChildProcesses.h.

#include "ChildProcesses.h"

#include "Terminal.h"
#include "platform/link/UniqueFd.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelp::device {

namespace {

// Blocks every signal for its lifetime.
class SignalBlock
{
public:
    SignalBlock()
    {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &_before);
    }
    ~SignalBlock() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    SignalBlock(const SignalBlock &) = delete;
    SignalBlock &operator=(const SignalBlock &) = delete;

private:
    sigset_t _before;
};

std::vector<char *> pointersTo(const std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string &text : texts) {
        pointers.push_back(const_cast<char *>(text.c_str())); // the C interface does not write to them
    }
    pointers.push_back(nullptr);
    return pointers;
}

// This process's environment with the given variables in place of its own.
std::vector<std::string> environmentWith(const std::vector<std::string> &variables)
{
    const auto isReplaced = [&](std::string_view entry) {
        const std::string_view name = entry.substr(0, entry.find('=') + 1);
        return std::any_of(variables.begin(), variables.end(),
                           [&](const std::string &variable) { return variable.starts_with(name); });
    };
    std::vector<std::string> environment(variables);
    for (char **entry = ::environ; entry && *entry; ++entry) {
        if (!isReplaced(*entry)) {
            environment.emplace_back(*entry);
        }
    }
    return environment;
}

[[noreturn]] void failLaunch(const std::string &program, int error)
{
    const std::string sentence = "cannot run " + program + ": ";
    switch (error) {
    case ENOENT:
        throw LaunchError(127, sentence + "there is no such program: check its name, and PATH");
    case EACCES:
        throw LaunchError(126, sentence + "permission denied: make it executable with chmod +x");
    case ENOEXEC:
        throw LaunchError(
            126, sentence + "no program of this system: a script begins with a line such as #!/bin/sh");
    case EAGAIN:
    case ENOMEM:
        throw LaunchError(125, sentence + "no process or memory is left: end some others first");
    default:
        throw LaunchError(126, sentence + std::generic_category().message(error));
    }
}

bool makePipe(link::UniqueFd &reading, link::UniqueFd &writing)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return false;
    }
    reading.reset(ends[0]);
    writing.reset(ends[1]);
    return true;
}

// The errno that a child reports, or 0 when it has become its program, which closes the pipe.
int readError(int pipe)
{
    int error = 0;
    ssize_t length = 0;
    do {
        length = ::read(pipe, &error, sizeof error);
    } while (length < 0 && errno == EINTR);
    return length == sizeof error ? error : 0;
}

// In the child, with all signals blocked: what this process handles becomes the default again. A Ctrl-Z that came
// before the child had a group of its own was not for it: ignoring such a signal for a moment forgets it.
void restoreSignal(int number)
{
    struct sigaction before {
    };
    if (::sigaction(number, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction change {
    };
    if (number == SIGTSTP || number == SIGTTIN || number == SIGTTOU) {
        change.sa_handler = SIG_IGN;
        ::sigaction(number, &change, nullptr);
    }
    change.sa_handler = SIG_DFL;
    ::sigaction(number, &change, nullptr);
}

int exitCodeOf(int status)
{
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace

ChildProcesses::ChildProcesses()
{
    ::pthread_sigmask(SIG_SETMASK, nullptr, &_maskBefore);
    struct sigaction ignore {
    };
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &ignore, &_pipeBefore);
    (void)::getrlimit(RLIMIT_NOFILE, &_filesBefore); // cannot fail
    const rlimit files{_filesBefore.rlim_max, _filesBefore.rlim_max};
    (void)::setrlimit(RLIMIT_NOFILE, &files); // where it fails, fewer clients find room
    (void)::prctl(PR_SET_CHILD_SUBREAPER, 1); // cannot fail on any Linux that has pidfd_open(2)
}

ChildProcesses::~ChildProcesses()
{
    if (_lentTo) {
        Terminal::takeBack();
    }
    (void)::prctl(PR_SET_CHILD_SUBREAPER, 0); // as above
    ::sigaction(SIGPIPE, &_pipeBefore, nullptr);
    (void)::setrlimit(RLIMIT_NOFILE, &_filesBefore); // less than there is
}

pid_t ChildProcesses::launch(const Launch &launch)
{
    const bool lends = launch.takesTerminal && Terminal::isThere() && Terminal::isOurs();
    const std::string &program = launch.command.front();
    const std::vector<std::string> environment = environmentWith(launch.environment);
    const std::vector<char *> arguments = pointersTo(launch.command);
    const std::vector<char *> variables = pointersTo(environment);
    link::UniqueFd reading;
    link::UniqueFd writing;
    if (!makePipe(reading, writing)) {
        failLaunch(program, errno);
    }
    pid_t child = 0;
    {
        const SignalBlock block; // the child must not act on a signal as this process would
        child = ::fork();
        if (child == 0) {
            becomeProgram(arguments.data(), variables.data(), lends, writing.get());
        }
    }
    if (child < 0) {
        failLaunch(program, errno);
    }
    writing.reset();
    if (const int error = readError(reading.get())) {
        (void)::waitpid(child, nullptr, 0); // it has ended, or is about to
        failLaunch(program, error);
    }
    _launched.insert(child);
    _any = true;
    if (lends) {
        _lentTo = child;
        lendTerminal();
    }
    return child;
}

// In the child, which shares nothing with this process any more: only what is safe after fork(2).
void ChildProcesses::becomeProgram(char *const arguments[], char *const environment[], bool keepsTerminal,
                                   int report) const
{
    ::setpgid(0, 0);
    for (int number = 1; number < NSIG; ++number) {
        restoreSignal(number);
    }
    ::sigaction(SIGPIPE, &_pipeBefore, nullptr);
    if (!keepsTerminal && Terminal::isThere()) {
        // In a group of its own, reading the terminal would stop it.
        const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::dup2(nothing, STDIN_FILENO);
    }
    (void)::setrlimit(RLIMIT_NOFILE, &_filesBefore); // less than there is
    ::pthread_sigmask(SIG_SETMASK, &_maskBefore, nullptr);
    ::execvpe(arguments[0], arguments, environment);
    const int error = errno;
    (void)!::write(report, &error, sizeof error); // nobody is left to be told otherwise
    ::_exit(127);
}

void ChildProcesses::reap(const Ended &ended)
{
    for (;;) {
        int status = 0;
        const pid_t child = ::waitpid(-1, &status, WNOHANG | (_lentTo ? WUNTRACED : 0));
        if (child <= 0) {
            _any = child == 0; // else ECHILD: none is left
            return;
        }
        if (WIFSTOPPED(status)) {
            suspendWith(child);
            continue;
        }
        _signalled.erase(child);
        if (child == _lentTo) {
            Terminal::takeBack();
            _lentTo = 0;
        }
        if (_launched.erase(child)) {
            ended(child, exitCodeOf(status));
        }
    }
}

// Ctrl-Z in a child that has the terminal: the shell above must see its job, which is this process, stop and go on.
void ChildProcesses::suspendWith(pid_t child)
{
    if (child != _lentTo) {
        return;
    }
    Terminal::takeBack();
    (void)::raise(SIGTSTP); // of no effect where there is no shell that could let us go on
    lendTerminal();
}

// The child may have stopped for want of the terminal.
void ChildProcesses::lendTerminal()
{
    if (Terminal::isOurs()) {
        Terminal::giveTo(_lentTo);
    }
    (void)::kill(-_lentTo, SIGCONT); // cannot fail: not buried yet
}

std::set<pid_t> ChildProcesses::present() const
{
    // Lists the children of this thread, the only one; cannot be read on some systems: then just those launched.
    const std::string self = std::to_string(::getpid());
    std::ifstream list("/proc/" + self + "/task/" + self + "/children");
    std::set<pid_t> children = _launched;
    for (pid_t child = 0; list >> child;) {
        children.insert(child);
    }
    return children;
}

void ChildProcesses::signalAll(int number)
{
    for (const pid_t child : present()) {
        int &last = _signalled[child];
        if (last != number) {
            last = number;
            // Until it is buried the number is the child's own; that it may have ended meanwhile is no failure.
            (void)::kill(_launched.count(child) ? -child : child, number);
        }
    }
}

} // namespace kelp::device
