// SPDX-License-Identifier: Apache-2.0
// See EpollSet.h.

#include "EpollSet.h"

#include "Registration.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>
#include <system_error>

namespace kelp::device {

using std::chrono::nanoseconds;

namespace {

#ifdef WAITS_IN_MILLISECONDS
constexpr bool WAITS_FINELY = false;
#else
constexpr bool WAITS_FINELY = true;
#endif

// Rounded up: rounded down, the loop would turn at full speed through the last part of a millisecond.
int milliseconds(nanoseconds delay)
{
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(delay).count();
    return static_cast<int>(std::min<std::int64_t>(count, INT_MAX));
}

} // namespace

EpollSet::EpollSet() : _epoll(::epoll_create1(EPOLL_CLOEXEC)), _waitsFinely(WAITS_FINELY)
{
    if (!_epoll) {
        throw std::system_error(errno, std::system_category(), "cannot make an event loop");
    }
}

int EpollSet::change(int operation, int descriptor, std::uint32_t events, Registration &registration)
{
    epoll_event event{};
    event.events = events;
    event.data.ptr = &registration;
    return ::epoll_ctl(_epoll.get(), operation, descriptor, &event) == 0 ? 0 : errno;
}

void EpollSet::forget(const Registration &registration)
{
    for (std::size_t i = _step / Registration::KINDS; i * Registration::KINDS < _steps; ++i) {
        if (_events[i].data.ptr == &registration) {
            _events[i].data.ptr = nullptr;
        }
    }
}

void EpollSet::wait(const std::optional<nanoseconds> &longest)
{
    const int count = waitForAny(longest);
    if (count < 0 && errno != EINTR) {
        throw std::system_error(errno, std::system_category(), "cannot wait for events");
    }
    _step = 0;
    _steps = count > 0 ? static_cast<std::size_t>(count) * Registration::KINDS : 0;
}

int EpollSet::waitForAny(const std::optional<nanoseconds> &longest)
{
    const nanoseconds delay = std::max(longest.value_or(nanoseconds::zero()), nanoseconds::zero());
    if (_waitsFinely) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(delay);
        const timespec limit{seconds.count(), static_cast<long>((delay - seconds).count())};
        const int count =
            ::epoll_pwait2(_epoll.get(), _events.data(), MOST_AT_ONCE, longest ? &limit : nullptr, nullptr);
        if (count >= 0 || errno != ENOSYS) {
            return count;
        }
        _waitsFinely = false; // the system is older than the C library
    }
    return ::epoll_wait(_epoll.get(), _events.data(), MOST_AT_ONCE, longest ? milliseconds(delay) : -1);
}

bool EpollSet::callNext()
{
    while (_step < _steps) {
        const std::size_t step = _step++; // first: an exception must not bring it back
        const epoll_event &event = _events[step / Registration::KINDS];
        if (event.data.ptr) {
            const auto kind = static_cast<Registration::Kind>(step % Registration::KINDS);
            static_cast<Registration *>(event.data.ptr)->call(kind, event.events);
            return true;
        }
    }
    return false;
}

} // namespace kelp::device
