// SPDX-License-Identifier: Apache-2.0
// See Daemon.h.

#include "Daemon.h"

#include "Failure.h"
#include "platform/link/UniqueFd.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelp::tool {

namespace {

constexpr char READY = '+';
constexpr char FAILED = '-'; // a reason follows
constexpr int START_TIME_MS = 30'000;

[[noreturn]] void fail(const std::string &what)
{
    throw Failure(EXIT_REFUSED,
                  "cannot start a device: " + what + ": " + std::generic_category().message(errno));
}

// Lets go of all that this process has from the one that started it, but for the pipe to it.
void detach(int pipe)
{
    const pid_t child =
        ::setsid() < 0 ? -1 : ::fork(); // what leads no session cannot get a terminal by mistake
    if (child > 0) {
        ::_exit(EXIT_HELD);
    }
    if (child < 0) {
        fail("no process of its own");
    }
    {
        const link::UniqueFd nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            if (::dup2(nothing.get(), standard) < 0) {
                fail("no /dev/null");
            }
        }
    }
    const auto before = static_cast<unsigned>(pipe - 1);
    const auto after = static_cast<unsigned>(pipe + 1);
    constexpr unsigned FIRST = STDERR_FILENO + 1;
    if (::chdir("/") != 0 || (FIRST <= before && ::close_range(FIRST, before, 0) != 0) ||
        ::close_range(after, ~0U, 0) != 0) {
        fail("it cannot leave this one's files");
    }
}

int runChild(link::UniqueFd pipe, const DaemonBody &body)
{
    const auto report = [&pipe](char outcome, const std::string &reason) {
        const std::string bytes = outcome + reason; // short enough for a pipe to take it whole
        const ssize_t written = pipe ? ::write(pipe.get(), bytes.data(), bytes.size()) : 0;
        (void)written; // that nobody listens is no reason to end
        pipe.reset();
    };
    try {
        detach(pipe.get());
        return body([&report] { report(READY, ""); });
    } catch (const std::exception &error) {
        report(FAILED, error.what());
        return EXIT_REFUSED;
    }
}

// All that the daemon reports, until it closes the pipe.
std::string awaitReport(int pipe)
{
    std::string report;
    for (;;) {
        pollfd reading{pipe, POLLIN, 0};
        const int ready = ::poll(&reading, 1, START_TIME_MS);
        if (ready == 0) {
            throw Failure(EXIT_TIME_OUT,
                          "the device does not say whether it has started: look for it with ps");
        }
        char part[1024];
        const ssize_t length = ready > 0 ? ::read(pipe, part, sizeof part) : -1;
        if (length < 0 && errno != EINTR) {
            fail("its report cannot be read");
        }
        if (length == 0) {
            return report;
        }
        report.append(part, length > 0 ? static_cast<std::size_t>(length) : 0);
    }
}

} // namespace

std::optional<int> runAsDaemon(const DaemonBody &body)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        fail("no pipe");
    }
    link::UniqueFd reading(ends[0]);
    link::UniqueFd writing(ends[1]);
    const pid_t child = ::fork();
    if (child < 0) {
        fail("no process");
    }
    if (child == 0) {
        reading.reset();
        return runChild(std::move(writing), body);
    }
    writing.reset();
    const std::string report = awaitReport(reading.get());
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (report.empty()) {
        throw Failure(EXIT_REFUSED,
                      "the device ended before it was ready: try start --foreground to see why");
    }
    if (report.front() != READY) {
        throw Failure(EXIT_REFUSED, report.substr(1));
    }
    return {};
}

} // namespace kelp::tool
