// SPDX-License-Identifier: Apache-2.0
// See ServerProcess.h.

#include "ServerProcess.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kelp::bench {

namespace {

// Becomes the command, whose output goes to /dev/null: some servers chat.
void execute(std::vector<std::string> command, const TemporaryDirectory &directory,
             const std::string &configuration)
{
    std::ofstream(directory.path("server.conf")) << configuration;
    std::vector<char *> arguments;
    for (std::string &argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    const link::UniqueFd nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (::chdir(directory.path().c_str()) == 0 && ::dup2(nothing.get(), STDOUT_FILENO) >= 0 &&
        ::dup2(nothing.get(), STDERR_FILENO) >= 0) {
        (void)::execvp(arguments[0], arguments.data()); // returns only where it fails
    }
    throw std::system_error(errno, std::generic_category(), "cannot start " + command[0]);
}

bool accepts(const std::string &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const link::UniqueFd probe(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return ::connect(probe.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

} // namespace

ServerProcess::ServerProcess(const std::vector<std::string> &command, const std::string &configuration,
                             const std::string &socket)
    : _socketPath(_directory.path(socket)),
      _process(command[0], [&](int) { execute(command, _directory, configuration); })
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!accepts(_socketPath)) {
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error(command[0] + " does not listen");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace kelp::bench
