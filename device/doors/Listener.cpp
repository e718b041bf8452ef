// SPDX-License-Identifier: Apache-2.0
// See Listener.h.

#include "Listener.h"

#include "platform/link/Socket.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

namespace kelp::device {

namespace {

constexpr int BACKLOG = 128;
constexpr int MOST_AT_ONCE = 16; // then other descriptors get their turn

[[noreturn]] void fail(int error, const std::string &directory)
{
    throw std::system_error(error, std::system_category(), "cannot listen in " + directory);
}

link::UniqueFd openSpare()
{
    return link::UniqueFd(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

link::UniqueFd acceptOne(int socket)
{
    return link::UniqueFd(::accept4(socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

// A listening socket that nobody can connect to before its mode is set.
link::UniqueFd listenIn(const std::string &directory)
{
    sockaddr_un address;
    if (const int error = link::socketAddress(directory, address)) {
        fail(error, directory);
    }
    link::UniqueFd socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket || ::bind(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::chmod(address.sun_path, S_IRUSR | S_IWUSR) != 0 || ::listen(socket.get(), BACKLOG) != 0) {
        fail(errno, directory);
    }
    return socket;
}

} // namespace

Listener::Listener(EventLoop &loop, const std::string &directory, Accepted accepted, Refused refused)
    : _accepted(std::move(accepted)),
      _refused(std::move(refused)),
      _socket(listenIn(directory)),
      _spare(openSpare()),
      _watch(loop.watch(_socket.get()))
{
    _watch.onReadable([this] { onReadable(); });
}

void Listener::onReadable()
{
    for (int i = 0; i < MOST_AT_ONCE; ++i) {
        link::UniqueFd connection = acceptOne(_socket.get());
        if (connection) {
            examine(std::move(connection));
            continue;
        }
        switch (errno) {
        case EINTR:
        case ECONNABORTED:
            continue;
        case EAGAIN:
            return;
        default: // EMFILE, ENFILE, ENOBUFS, ENOMEM
            return turnAwayOne();
        }
    }
}

void Listener::examine(link::UniqueFd connection)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
        return; // who cannot be told apart is not let in
    }
    if (peer.uid != ::geteuid()) {
        connection.reset();
        return _refused(peer);
    }
    _accepted(std::move(connection));
}

// Out of descriptors, the waiting client would keep the socket readable and the loop spinning: it is let in on the
// spare descriptor and out again, which it sees as a device that went away.
void Listener::turnAwayOne()
{
    _spare.reset();
    const bool isTurnedAway = static_cast<bool>(acceptOne(_socket.get()));
    _spare = openSpare();
    if (!isTurnedAway) {
        constexpr int PAUSE_MS = 10;
        (void)::poll(nullptr, 0,
                     PAUSE_MS); // the whole system is short: do not make it worse by trying at full speed
    }
}

} // namespace kelp::device
