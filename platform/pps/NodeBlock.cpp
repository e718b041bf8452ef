// SPDX-License-Identifier: Apache-2.0
// See NodeBlock.h. In front of each block stands its size.
#include "NodeBlock.h"

#include <cerrno>
#include <memory>
#include <new>
#include <utility>

namespace kelp::pps {

namespace {

constexpr std::size_t MOST_KEPT = 131072;
constexpr std::size_t LEAST = 4096;

struct alignas(std::max_align_t) Head {
    std::size_t size; // of what follows
};

// Of plain types, so that they are there at a thread's very end too.
thread_local Head *s_kept = nullptr;
thread_local bool s_hasEnded = false;

void release(Head *head)
{
    const std::unique_ptr<std::byte[]> owned(reinterpret_cast<std::byte *>(head));
}

// Ends what the thread keeps, and that it keeps anything.
class ThreadEnd
{
public:
    ThreadEnd() = default;
    ThreadEnd(const ThreadEnd &) = delete;
    ThreadEnd &operator=(const ThreadEnd &) = delete;
    ~ThreadEnd()
    {
        s_hasEnded = true;
        release(std::exchange(s_kept, nullptr));
    }
};

Head *allocate(std::size_t size)
{
    const int before = errno;
    auto *const bytes = new (std::nothrow) std::byte[sizeof(Head) + size];
    errno = before;
    return bytes ? new (bytes) Head{size} : nullptr;
}

} // namespace

std::byte *takeBlock(std::size_t size)
{
    Head *head = std::exchange(s_kept, nullptr);
    if (!head || head->size < size) {
        release(head);
        head = allocate(size < LEAST ? LEAST : size);
    }
    return head ? reinterpret_cast<std::byte *>(head + 1) : nullptr;
}

void giveBlock(std::byte *block)
{
    static thread_local const ThreadEnd end;
    if (!block) {
        return;
    }
    Head *const head = reinterpret_cast<Head *>(block) - 1;
    if (s_kept || s_hasEnded || head->size > MOST_KEPT) {
        release(head);
    } else {
        s_kept = head;
    }
}

} // namespace kelp::pps
