// SPDX-License-Identifier: Apache-2.0
// See CallPage.h. The page's state is a futex: the client sleeps on it without a descriptor.

#include "CallPage.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>

#include <linux/futex.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kelp::link {

struct CallPage::Head {
    std::atomic<std::uint32_t> state;
    std::uint32_t descriptor;
    std::uint32_t size;
    std::int32_t status;
    std::uint32_t woken; // readers, by the last write
};

namespace {

constexpr std::size_t HEAD = 64;
constexpr std::uint32_t FEW_READERS = 2;

// Values of Head::state; the memory begins as zeros.
constexpr std::uint32_t IDLE = 0;
constexpr std::uint32_t ASKED = 1;
constexpr std::uint32_t TAKEN = 2;
constexpr std::uint32_t ANSWERED = 3;
constexpr std::uint32_t SLEEPING = 4; // beside ASKED or TAKEN: the client is to be woken

using Clock = std::chrono::steady_clock;

// Sleeps while the word has the value. False: until the moment has come.
bool sleepWhile(const std::atomic<std::uint32_t> &word, std::uint32_t value, Clock::time_point end)
{
    const auto sinceBoot = end.time_since_epoch(); // of CLOCK_MONOTONIC, as the call below wants it
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceBoot);
    const timespec moment{seconds.count(), (sinceBoot - seconds).count()};
    return ::syscall(SYS_futex, &word, FUTEX_WAIT_BITSET, value, &moment, nullptr, FUTEX_BITSET_MATCH_ANY) ==
               0 ||
           errno != ETIMEDOUT;
}

void wakeAll(const std::atomic<std::uint32_t> &word)
{
    (void)::syscall(SYS_futex, &word, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0); // how many does not matter
}

} // namespace

std::size_t CallPage::sizeFor(std::size_t textBytes)
{
    return HEAD + textBytes;
}

std::size_t CallPage::textBytes() const
{
    return _memory.size() - HEAD;
}

CallPage::Head &CallPage::head() const
{
    static_assert(sizeof(Head) <= HEAD && sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t));
    return *reinterpret_cast<Head *>(_memory.data());
}

char *CallPage::text() const
{
    return _memory.data() + HEAD;
}

void CallPage::ask(std::uint32_t descriptor, std::string_view text)
{
    head().descriptor = descriptor;
    head().size = static_cast<std::uint32_t>(text.size());
    std::memcpy(this->text(), text.data(), text.size());
    head().state.store(ASKED, std::memory_order_release);
}

bool CallPage::awaitAnswer(std::chrono::nanoseconds longest, int &status)
{
    // A device that shares the processor can answer right now, and neither side pays for a sleep. Where many readers
    // wait for it, whoever yields instead of sleeping takes turns with all of them.
    if (head().woken <= FEW_READERS) {
        (void)::sched_yield();
    }
    std::uint32_t state = head().state.load(std::memory_order_acquire);
    if (state != ANSWERED) {
        state = sleepUntilAnswered(Clock::now() + longest);
    }
    if (state != ANSWERED) {
        return false;
    }
    status = head().status;
    head().state.store(IDLE, std::memory_order_relaxed);
    return true;
}

// Returns the last state, which is another than ANSWERED only when the moment has come.
std::uint32_t CallPage::sleepUntilAnswered(std::chrono::steady_clock::time_point end)
{
    for (;;) {
        std::uint32_t state = head().state.load(std::memory_order_acquire);
        if (state == ANSWERED) {
            return state;
        }
        const bool isMarked = (state & SLEEPING) || head().state.compare_exchange_strong(
                                                        state, state | SLEEPING, std::memory_order_acq_rel);
        if (isMarked && !sleepWhile(head().state, state | SLEEPING, end)) {
            return head().state.load(std::memory_order_acquire);
        }
    }
}

bool CallPage::takeAsked(std::uint32_t &descriptor, std::string &text)
{
    std::uint32_t state = head().state.load(std::memory_order_acquire);
    do {
        if ((state & ~SLEEPING) != ASKED) {
            return false;
        }
    } while (
        !head().state.compare_exchange_weak(state, TAKEN | (state & SLEEPING), std::memory_order_acq_rel));
    descriptor = head().descriptor;
    text.assign(this->text(), std::min<std::size_t>(head().size, textBytes()));
    return true;
}

void CallPage::answer(int status, std::size_t woken)
{
    head().status = status;
    head().woken = static_cast<std::uint32_t>(woken);
    if (head().state.exchange(ANSWERED, std::memory_order_acq_rel) & SLEEPING) {
        wakeAll(head().state);
    }
}

} // namespace kelp::link
