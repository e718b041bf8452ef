// SPDX-License-Identifier: Apache-2.0
// See ChildProcess.h.

#include "ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

namespace kelp::bench {

ChildProcess::ChildProcess(std::vector<std::string> command) : _name(command[0])
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    _output.reset(ends[0]);
    const link::UniqueFd itsOutput(ends[1]);
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

ChildProcess::~ChildProcess()
{
    if (_pid) {
        (void)::kill(_pid, SIGTERM); // cannot fail: it has not been waited for
        (void)::waitpid(_pid, nullptr, 0);
    }
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
