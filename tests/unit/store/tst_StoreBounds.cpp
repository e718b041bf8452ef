// SPDX-License-Identifier: Apache-2.0
// Those who do not read cost a bounded amount of memory, whatever the others do. Every byte that the program
// allocates is counted.
#include "StoreTest.h"
#include "device/store/NameHash.h"

#include <malloc.h>

#include <cstdlib>
#include <new>
#include <set>

namespace {

std::size_t allocatedBytes = 0;

} // namespace

void *operator new(std::size_t size)
{
    void *const memory = std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    allocatedBytes += malloc_usable_size(memory);
    return memory;
}

void operator delete(void *memory) noexcept
{
    allocatedBytes -= malloc_usable_size(memory);
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace kelp::device {
namespace {

// Bytes that are left after so many rounds beyond those that as many more leave.
template <class Round>
std::size_t growth(int rounds, Round round)
{
    for (int i = 0; i < rounds; ++i) {
        round(i);
    }
    const std::size_t before = allocatedBytes;
    for (int i = rounds; i < 2 * rounds; ++i) {
        round(i);
    }
    return allocatedBytes > before ? allocatedBytes - before : 0;
}

constexpr std::size_t SLACK = 256 * 1024; // buffers that happen to be larger at the end

TEST(StoreBounds, subscribersThatNeverReadDoNotGrowWithTheChanges)
{
    StoreClient client;
    const DescriptorId publisher = client.make("/o", "a:n:1\n");
    client.read(client.open("/o?delta", "r"));
    client.read(client.open("/.all", "r"));
    const std::size_t empty = allocatedBytes;

    const std::size_t grown = growth(50000, [&](int i) {
        const std::string name = "a-name-that-comes-once-" + std::to_string(i);
        client.store.write(publisher, name + "::" + std::string(300, 'x') + "\n");
        client.store.write(publisher, "-" + name + "\n");
    });

    EXPECT_LT(grown, SLACK);
    EXPECT_LT(allocatedBytes - empty, 2 * SLACK); // 1024 names
}

TEST(StoreBounds, valuesThatWereLargeOnceDoNotKeepTheirMemory)
{
    StoreClient client;
    const DescriptorId publisher = client.make("/o", "a::1\n");
    const std::size_t empty = allocatedBytes;

    for (int i = 0; i < 500; ++i) {
        const std::string name = "k" + std::to_string(i);
        EXPECT_EQ(client.store.write(publisher, name + "::" + std::string(50000, 'x') + "\n"), 0);
        EXPECT_EQ(client.store.write(publisher, name + "::\n"), 0);
    }

    EXPECT_LT(allocatedBytes - empty, 2 * SLACK);
}

TEST(StoreBounds, objectsThatComeAndGoLeaveNothingWithThoseWhoNeverRead)
{
    StoreClient client;
    client.make("/d/o", "a:n:1\n");
    client.open("/.all", "r");
    client.read(client.open("/d/.all", "r"));

    EXPECT_LT(growth(20000,
                     [&](int i) {
                         const std::string path = "/d/an-object-that-comes-once-" + std::to_string(i);
                         client.store.close(client.make(path, "a:n:1\n"));
                         EXPECT_EQ(client.store.unlink(path, StoreClient::OWNER), 0);
                     }),
              SLACK);
}

TEST(StoreBounds, subscribersOfEverythingThatNeverReadCostTheSameHoweverMuchThereIs)
{
    StoreClient client;
    for (int i = 0; i < 2000; ++i) {
        client.store.close(client.make("/d/" + std::to_string(i), ""));
    }
    EXPECT_LT(growth(100, [&](int) { client.peek(client.open("/.all", "r")); }) / 100, 32 * 1024); // its text
}

TEST(StoreBounds, namesThatWereChosenToCollideDoNotAndNobodyKnowsWhichWould)
{
    std::set<std::size_t> hashes;
    for (int i = 0; i < 64 * 1024; ++i) {
        const std::string name = std::to_string(i);
        hashes.insert(std::hash<std::string>()(name) % 1024 == 0 ? NameHash()(name) % 1024 : 0);
    }
    EXPECT_GT(hashes.size(), 32U);
    EXPECT_NE(NameHash(1, 3)("name"), NameHash(2, 3)("name"));
}

TEST(StoreBounds, clientsThatComeAndGoDoNotFillTheInboxOfAServerThatNeverReads)
{
    StoreClient client;
    const DescriptorId server = client.open("/o?server", "rwc");
    client.peek(server);

    EXPECT_LT(growth(20000,
                     [&](int) {
                         const DescriptorId visitor = client.open("/o", "rw");
                         client.store.write(visitor, "a:n:1\n"); // the first few are taken
                         client.store.close(visitor);
                     }),
              SLACK);
}

} // namespace
} // namespace kelp::device
