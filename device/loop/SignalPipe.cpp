// SPDX-License-Identifier: Apache-2.0
// See SignalPipe.h.

#include "SignalPipe.h"

#include <atomic>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace kelp::device {

namespace {

constexpr int NONE = -1;

// Where the handler writes to. All that it may touch is this and the pipe.
std::atomic<int> s_writing{NONE};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void handleSignal(int number)
{
    const int errnoBefore = errno;
    const auto byte = static_cast<unsigned char>(number); // the highest is 64
    // A pipe that is full holds thousands that nobody has looked at: one more would tell no more.
    (void)!::write(s_writing.load(), &byte, sizeof byte);
    errno = errnoBefore;
}

[[noreturn]] void fail(int error, const char *what)
{
    throw std::system_error(error, std::system_category(), what);
}

} // namespace

SignalPipe::SignalPipe(const std::vector<int> &signals)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        fail(errno, "cannot make a pipe for signals");
    }
    _reading.reset(ends[0]);
    _writing.reset(ends[1]);
    int nobody = NONE;
    if (!s_writing.compare_exchange_strong(nobody, _writing.get())) {
        fail(EBUSY, "another loop of this process takes signals already: end that first");
    }
    try {
        take(signals);
    } catch (...) {
        giveBack();
        throw;
    }
}

SignalPipe::~SignalPipe()
{
    giveBack();
}

int SignalPipe::next()
{
    unsigned char number = 0;
    return ::read(_reading.get(), &number, sizeof number) == sizeof number ? number : 0;
}

void SignalPipe::take(const std::vector<int> &signals)
{
    struct sigaction change {
    };
    change.sa_handler = handleSignal;
    change.sa_flags = SA_RESTART;
    ::sigfillset(&change.sa_mask); // one at a time: the order in the pipe is theirs
    sigset_t taken;
    ::sigemptyset(&taken);
    _before.reserve(signals.size());
    for (const int number : signals) {
        struct sigaction before {
        };
        if (::sigaction(number, &change, &before) != 0) {
            fail(errno, "cannot take a signal");
        }
        _before.emplace_back(number, before);
        ::sigaddset(&taken, number);
    }
    // Whoever started this process may have blocked them for good.
    if (const int error = ::pthread_sigmask(SIG_UNBLOCK, &taken, nullptr)) {
        fail(error, "cannot unblock signals");
    }
}

void SignalPipe::giveBack()
{
    for (auto one = _before.rbegin(); one != _before.rend(); ++one) {
        (void)::sigaction(one->first, &one->second, nullptr); // cannot fail: it was taken
    }
    s_writing.store(NONE); // after the last moment at which a handler can begin
}

} // namespace kelp::device
