// SPDX-License-Identifier: Apache-2.0
// See ProcessHandle.h.

#include "ProcessHandle.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>

#include <csignal>
#include <sys/socket.h>
#include <sys/syscall.h>

namespace kelp::device {

namespace {

#ifndef SO_PEERPIDFD
constexpr int SO_PEERPIDFD = 77; // younger than the C library's headers
#endif

// A descriptor of the peer's process. Asking the socket leaves no moment in which the number could change hands; only
// a system that does not know the question is given the number.
int openPeer(int socket, pid_t pid, link::UniqueFd &descriptor)
{
    int peer = -1;
    socklen_t size = sizeof peer;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERPIDFD, &peer, &size) == 0) {
        descriptor.reset(peer);
        return 0;
    }
    if (errno != ENOPROTOOPT) {
        return errno == ENODATA ? 0 : errno;
    }
    if (pid <= 0) {
        return 0; // out of sight, and no way to hold it
    }
    peer = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)); // <sys/pidfd.h> is not fit for C++ everywhere
    if (peer < 0) {
        return errno == ENOSYS ? 0 : errno;
    }
    descriptor.reset(peer);
    return 0;
}

} // namespace

int ProcessHandle::ofPeer(int socket, ProcessHandle &handle)
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) {
        return errno;
    }
    link::UniqueFd descriptor;
    if (const int error = openPeer(socket, credentials.pid, descriptor)) {
        return error;
    }
    handle._pid = credentials.pid;
    handle._descriptor = std::move(descriptor);
    return 0;
}

std::string ProcessHandle::programName() const
{
    constexpr std::string_view DELETED = " (deleted)"; // what the kernel adds once the file has gone
    const std::string folder = "/proc/" + std::to_string(_pid);
    std::error_code error;
    std::string path = std::filesystem::read_symlink(folder + "/exe", error).string();
    if (path.ends_with(DELETED)) {
        path.resize(path.size() - DELETED.size());
    }
    std::string name = path.substr(path.rfind('/') + 1);
    if (name.empty()) {
        std::ifstream comm(folder + "/comm");
        (void)std::getline(comm, name); // stays empty where it cannot be read
    }
    return name.empty() ? "application" : name;
}

int ProcessHandle::signal(int number) const
{
    if (_pid <= 0 || _pid == ::getpid() || !_descriptor) {
        return ESRCH;
    }
    return ::syscall(SYS_pidfd_send_signal, _descriptor.get(), number, nullptr, 0) == 0 ? 0 : errno;
}

} // namespace kelp::device
