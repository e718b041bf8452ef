// SPDX-License-Identifier: Apache-2.0
// See ChildProcess.h.

#include "ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelp::bench {

namespace {

// Returns the exit code.
int runInChild(const std::string &name, pid_t parent, const std::function<void()> &work)
{
    (void)::prctl(PR_SET_PDEATHSIG, SIGTERM); // cannot fail
    if (::getppid() != parent) {
        return 1; // it has ended already
    }
    try {
        work();
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), error.what());
        return 1;
    }
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> command) : _name(command[0])
{
    const link::UniqueFd itsOutput = openOutput();
    std::vector<char *> arguments;
    for (std::string &argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, itsOutput.get(), STDOUT_FILENO);
    const int error = ::posix_spawnp(&_pid, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error) {
        throw std::system_error(error, std::generic_category(), "cannot start " + _name);
    }
}

ChildProcess::ChildProcess(std::string name, const std::function<void(int)> &work) : _name(std::move(name))
{
    const link::UniqueFd itsOutput = openOutput();
    const pid_t parent = ::getpid();
    _pid = ::fork();
    if (_pid < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start " + _name);
    }
    if (_pid == 0) {
        _output.reset();
        std::_Exit(runInChild(_name, parent, [&] { work(itsOutput.get()); }));
    }
}

ChildProcess::~ChildProcess()
{
    if (_pid) {
        (void)::kill(_pid, SIGTERM); // cannot fail: it has not been waited for
        (void)::waitpid(_pid, nullptr, 0);
    }
}

// Makes the pipe, and returns the child's end.
link::UniqueFd ChildProcess::openOutput()
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    _output.reset(ends[0]);
    return link::UniqueFd(ends[1]);
}

void ChildProcess::read(void *bytes, std::size_t size)
{
    auto *next = static_cast<char *>(bytes);
    while (size > 0) {
        const ssize_t got = ::read(_output.get(), next, size);
        if (got <= 0) {
            throw std::runtime_error(_name + " has ended too early");
        }
        next += got;
        size -= static_cast<std::size_t>(got);
    }
}

std::string ChildProcess::readLine()
{
    std::string line;
    for (char next = 0; next != '\n'; line += next) {
        read(&next, 1);
    }
    return line.substr(0, line.size() - 1);
}

void ChildProcess::finish()
{
    int status = -1;
    (void)::waitpid(_pid, &status, 0); // cannot fail: it has not been waited for
    _pid = 0;
    if (status != 0) {
        throw std::runtime_error(_name + " has failed with status " + std::to_string(status));
    }
}

std::string siblingProgram(const std::string &name)
{
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename(name);
}

} // namespace kelp::bench
