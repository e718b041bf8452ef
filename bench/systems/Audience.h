// SPDX-License-Identifier: Apache-2.0
// A process with many subscribers to the topic "a", which waits for all of them in one epoll loop. The
// publisher's process sees how far they are.
#pragma once

#include "System.h"
#include "bench/ChildProcess.h"
#include "platform/link/SharedMemory.h"
#include "platform/link/UniqueFd.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace kelp::bench {

class Audience
{
public:
    // On return all are subscribed.
    Audience(System &system, std::size_t subscribers);

    // The updates that subscribers have read so far, each counted for each of them.
    std::uint64_t delivered() const { return progress().delivered; }

    // Waits until every subscriber has read an update. Throws std::runtime_error when one does not for ten
    // seconds.
    void awaitAll(std::uint64_t sequence);

private:
    struct Progress {
        std::atomic<std::uint64_t> delivered;
        std::atomic<std::uint64_t> read;   // the newest update, once all have read it
        std::atomic<std::uint64_t> wanted; // ring once all have read this one; 0: do not
    };
    // What the process does.
    void run(System &system, std::size_t subscribers, int output);
    void report(std::uint64_t delivered, std::uint64_t read);

    Progress &progress() const { return *reinterpret_cast<Progress *>(_memory.data()); }

    link::SharedMemory _memory;
    link::UniqueFd _bell; // an eventfd
    std::unique_ptr<ChildProcess> _process;
};

} // namespace kelp::bench
