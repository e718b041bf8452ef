// SPDX-License-Identifier: Apache-2.0
// The device's socket as both ends use it: where it lies, and whole messages (with a few descriptors each)
// in and out. SOCK_SEQPACKET keeps the messages apart; nothing here knows what they say.
#pragma once

#include "UniqueFd.h"

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/un.h>

namespace kelp::link {

// The name of the socket within the device's directory.
inline constexpr char SOCKET_NAME[] = "socket";

// Sets address to that of the device in a directory. Returns 0, or ENAMETOOLONG when it does not fit a socket
// address: the directory's path may then have at most MAX_DIRECTORY_BYTES bytes.
int socketAddress(const std::string &directory, sockaddr_un &address);
inline constexpr std::size_t MAX_DIRECTORY_BYTES = sizeof(sockaddr_un::sun_path) - sizeof SOCKET_NAME - 1;

// Connects to the device in a directory. The socket blocks for at most timeout at each call (0: without limit), which
// then fails with EAGAIN. Returns 0 and sets connection, or the errno of socketAddress(), socket(2) or connect(2).
int connectToDevice(const std::string &directory, std::chrono::milliseconds timeout, UniqueFd &connection);

// Two connected sockets. Returns 0, or the errno of socketpair(2).
int socketPair(UniqueFd &first, UniqueFd &second);

// The descriptors that come with a message, in their order, close-on-exec.
using Passed = std::vector<UniqueFd>;
inline constexpr std::size_t MAX_PASSED = 2;

// Sends one message, with at most MAX_PASSED descriptors, without raising SIGPIPE. flags as for sendmsg(2).
// Returns 0, or the errno of sendmsg(2).
int sendMessage(int socket, std::string_view bytes, std::span<const int> passed = {}, int flags = 0);

// Receives one message of at most size bytes into buffer. flags as for recvmsg(2).
// Returns 0 and sets length (0: the other end has closed) and passed (those beyond MAX_PASSED are closed). Otherwise the
// errno of recvmsg(2), or EMSGSIZE for a message that does not fit, which is then lost. Where no descriptor is free, those
// that came with the message are missing.
int receiveMessage(int socket, char *buffer, std::size_t size, std::size_t &length, Passed &passed,
                   int flags = 0);

} // namespace kelp::link
