// SPDX-License-Identifier: Apache-2.0
// See PpsScratch.h.

#include "PpsScratch.h"

#include <utility>

namespace kelp {

namespace {

constexpr std::size_t MOST_KEPT = 131072; // bytes of text

// Of plain types, so that they are there at a thread's very end too.
thread_local PpsScratch *s_kept = nullptr;
thread_local bool s_hasEnded = false;

// Ends what the thread keeps, and that it keeps anything.
class ThreadEnd
{
public:
    ThreadEnd() = default;
    Q_DISABLE_COPY(ThreadEnd)
    ~ThreadEnd()
    {
        s_hasEnded = true;
        const std::unique_ptr<PpsScratch> ended(std::exchange(s_kept, nullptr));
    }
};

} // namespace

PpsScratch::Lease::Lease() : _scratch(std::exchange(s_kept, nullptr))
{
    if (!_scratch) {
        _scratch = std::make_unique<PpsScratch>();
    }
}

PpsScratch::Lease::~Lease()
{
    static thread_local const ThreadEnd end;
    if (_scratch->text.capacity() > MOST_KEPT) {
        std::string().swap(_scratch->text);
    }
    if (!s_kept && !s_hasEnded) {
        s_kept = _scratch.release();
    }
}

} // namespace kelp
