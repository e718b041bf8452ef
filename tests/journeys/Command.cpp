// SPDX-License-Identifier: Apache-2.0
// See Command.h.

#include "Command.h"

#include "tests/doors/DoorClient.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace kelp::test {

namespace {

constexpr int WAIT_MS = static_cast<int>(std::chrono::milliseconds(WAIT_TIME).count());

void require(bool holds, const char *what)
{
    if (!holds) {
        throw std::system_error(errno, std::system_category(), what);
    }
}

void makePipe(link::UniqueFd &reading, link::UniqueFd &writing)
{
    int ends[2];
    require(::pipe2(ends, O_CLOEXEC) == 0, "no pipe");
    reading.reset(ends[0]);
    writing.reset(ends[1]);
}

void awaitReadable(int descriptor, const char *what)
{
    pollfd readable{descriptor, POLLIN, 0};
    if (::poll(&readable, 1, WAIT_MS) <= 0) {
        throw std::runtime_error(what);
    }
}

std::string contentOf(int file)
{
    std::string content;
    char part[4096];
    for (ssize_t length = 0;
         (length = ::pread(file, part, sizeof part, static_cast<off_t>(content.size()))) > 0;) {
        content.append(part, static_cast<std::size_t>(length));
    }
    return content;
}

// In the child: becomes the program.
[[noreturn]] void become(const std::vector<std::string> &command, const Command::Environment &environment,
                         int input, int output, int errors)
{
    const std::vector<char *> arguments = pointersTo(command);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        std::signal(number, SIG_DFL); // whatever the test was started with
    }
    for (const auto &[name, value] : environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    ::execvp(arguments[0], arguments.data());
    ::_exit(99);
}

} // namespace

Command::Command(const std::vector<std::string> &command, const Environment &environment)
    : _errors(::memfd_create("errors", MFD_CLOEXEC))
{
    link::UniqueFd input;
    link::UniqueFd output;
    makePipe(input, _input);
    makePipe(_output, output);
    _pid = ::fork();
    require(_pid >= 0, "no process");
    if (_pid == 0) {
        become(command, environment, input.get(), output.get(), _errors.get());
    }
}

Command::~Command()
{
    if (_pid) {
        (void)::kill(_pid, SIGKILL); // not buried yet: cannot hit another
        (void)::waitpid(_pid, nullptr, 0);
    }
}

void Command::signal(int number) const
{
    require(::kill(_pid, number) == 0, "cannot signal");
}

void Command::writeInput(const std::string &text)
{
    require(::write(_input.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()),
            "cannot write");
}

std::string Command::awaitLine(const std::string &word)
{
    for (;;) {
        const std::size_t end = _read.find('\n', _consumed);
        if (end == std::string::npos) {
            if (!readMore()) {
                throw std::runtime_error("no line " + word + " in: " + _read + contentOf(_errors.get()));
            }
            continue;
        }
        const std::string line = _read.substr(_consumed, end - _consumed);
        _consumed = end + 1;
        if (line.starts_with(word)) {
            return line.substr(std::min(line.size(), word.size() + 1));
        }
    }
}

bool Command::readMore()
{
    awaitReadable(_output.get(), "the program neither writes nor ends");
    char part[4096];
    const ssize_t length = ::read(_output.get(), part, sizeof part);
    require(length >= 0, "cannot read");
    _read.append(part, static_cast<std::size_t>(length));
    return length > 0;
}

Result Command::finish()
{
    closeInput();
    while (readMore()) {
    }
    const link::UniqueFd ending(static_cast<int>(::syscall(SYS_pidfd_open, _pid, 0)));
    require(static_cast<bool>(ending), "cannot watch the program");
    awaitReadable(ending.get(), "the program does not end");
    int status = 0;
    require(::waitpid(_pid, &status, 0) == _pid, "cannot bury the program");
    _pid = 0;
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), _read,
            contentOf(_errors.get())};
}

Result Command::run(const std::vector<std::string> &command, const Environment &environment)
{
    return Command(command, environment).finish();
}

std::vector<char *> pointersTo(const std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string &text : texts) {
        pointers.push_back(const_cast<char *>(text.c_str())); // nobody writes to them
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> kelpDevice(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), KELP_DEVICE_PROGRAM);
    return arguments;
}

bool processExists(pid_t pid)
{
    return ::kill(pid, 0) == 0 || errno != ESRCH;
}

} // namespace kelp::test
