// SPDX-License-Identifier: Apache-2.0
// Whole messages over the device's socket, for the platform's client side and the device's door.

#include "Socket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/time.h>

namespace kelp::link {

namespace {

// Room for the descriptors of one message, and for a few that nobody asked for, which are closed.
constexpr std::size_t MOST_RECEIVED = 8;

// Keeps the first descriptors that came with a message and closes the rest.
Passed takePassed(msghdr &header)
{
    Passed kept;
    for (cmsghdr *part = CMSG_FIRSTHDR(&header); part; part = CMSG_NXTHDR(&header, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) {
            continue;
        }
        const std::size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (std::size_t i = 0; i < count; ++i) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(part) + i * sizeof descriptor, sizeof descriptor);
            UniqueFd owned(descriptor);
            if (kept.size() < MAX_PASSED) {
                kept.push_back(std::move(owned));
            }
        }
    }
    return kept;
}

// For connect(2) too: it waits while the device's backlog of connections is full.
int limitWaiting(int socket, std::chrono::milliseconds timeout)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(timeout);
    const std::chrono::microseconds rest = timeout - seconds;
    const timeval limit{seconds.count(), rest.count()};
    for (const int option : {SO_SNDTIMEO, SO_RCVTIMEO}) {
        if (::setsockopt(socket, SOL_SOCKET, option, &limit, sizeof limit) != 0) {
            return errno;
        }
    }
    return 0;
}

} // namespace

int socketAddress(const std::string &directory, sockaddr_un &address)
{
    if (directory.size() > MAX_DIRECTORY_BYTES) {
        return ENAMETOOLONG;
    }
    address = {};
    address.sun_family = AF_UNIX;
    const std::string path = directory + '/' + SOCKET_NAME;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return 0;
}

int connectToDevice(const std::string &directory, std::chrono::milliseconds timeout, UniqueFd &connection)
{
    sockaddr_un address;
    if (const int error = socketAddress(directory, address)) {
        return error;
    }
    UniqueFd socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (!socket) {
        return errno;
    }
    if (const int error = limitWaiting(socket.get(), timeout)) {
        return error;
    }
    int result = 0;
    do {
        result = ::connect(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
        return errno;
    }
    connection = std::move(socket);
    return 0;
}

int socketPair(UniqueFd &first, UniqueFd &second)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        return errno;
    }
    first.reset(ends[0]);
    second.reset(ends[1]);
    return 0;
}

int sendMessage(int socket, std::string_view bytes, std::span<const int> passed, int flags)
{
    iovec part{const_cast<char *>(bytes.data()), bytes.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    alignas(cmsghdr) char control[CMSG_SPACE(MAX_PASSED * sizeof(int))] = {};
    if (!passed.empty()) {
        const std::size_t size = std::min(passed.size(), MAX_PASSED) * sizeof(int);
        header.msg_control = control;
        header.msg_controllen = CMSG_SPACE(size);
        cmsghdr *rights = CMSG_FIRSTHDR(&header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(size);
        std::memcpy(CMSG_DATA(rights), passed.data(), size);
    }
    ssize_t sent = 0;
    do {
        sent = ::sendmsg(socket, &header, flags | MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent < 0 ? errno : 0;
}

int receiveMessage(int socket, char *buffer, std::size_t size, std::size_t &length, Passed &passed, int flags)
{
    iovec part{buffer, size};
    alignas(cmsghdr) char control[CMSG_SPACE(MOST_RECEIVED * sizeof(int))];
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control;
    header.msg_controllen = sizeof control;
    ssize_t received = 0;
    do {
        received = ::recvmsg(socket, &header, flags | MSG_CMSG_CLOEXEC);
    } while (received < 0 && errno == EINTR);
    if (received < 0) {
        return errno;
    }
    Passed descriptors = takePassed(header);
    if (header.msg_flags & MSG_TRUNC) {
        return EMSGSIZE;
    }
    length = static_cast<std::size_t>(received);
    passed = std::move(descriptors);
    return 0;
}

} // namespace kelp::link
