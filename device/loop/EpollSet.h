// SPDX-License-Identifier: Apache-2.0
// The descriptors that the event loop waits for, on epoll(7), and what the last wait brought. The loop owns one and
// its Registrations enter themselves.
#pragma once

#include "platform/link/UniqueFd.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <sys/epoll.h>

namespace kelp::device {

class Registration;

class EpollSet
{
public:
    // Throws std::system_error.
    EpollSet();

    // As epoll_ctl(2): 0 or an errno.
    int change(int operation, int descriptor, std::uint32_t events, Registration &registration);

    // A registration ends: what the last wait brought for it goes nowhere.
    void forget(const Registration &registration);

    // Waits for events, at most so long. To be called when the former ones have been called. Throws std::system_error.
    void wait(const std::optional<std::chrono::nanoseconds> &longest);

    // Makes the next call of what the last wait brought; false when there is none. An exception of the callback leaves
    // the others for later.
    bool callNext();

private:
    int waitForAny(const std::optional<std::chrono::nanoseconds> &longest);

    static constexpr std::size_t MOST_AT_ONCE = 64; // events of one wait

    link::UniqueFd _epoll;
    bool _waitsFinely; // else in milliseconds
    std::array<epoll_event, MOST_AT_ONCE> _events{};
    std::size_t _steps = 0; // a step for each kind of call, for each event
    std::size_t _step = 0;  // the next
};

} // namespace kelp::device
