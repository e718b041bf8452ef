// SPDX-License-Identifier: Apache-2.0
// What the device and a client share in memory: the slot of a subscriber and the page of a writer, one after the other
// and both at once.
#include "platform/link/CallPage.h"
#include "platform/link/Slot.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>

namespace kelp::link {

namespace {

constexpr std::size_t TEXT_BYTES = 65536;

// Both ends' view of the same memory.
void share(std::size_t size, SharedMemory &device, SharedMemory &client)
{
    UniqueFd descriptor;
    ASSERT_EQ(SharedMemory::create(size, device, descriptor), 0);
    ASSERT_EQ(SharedMemory::map(descriptor, size, client), 0);
}

struct Slot {
    Slot()
    {
        SharedMemory device;
        SharedMemory client;
        share(SlotMemory::sizeFor(TEXT_BYTES), device, client);
        writer.emplace(std::move(device));
        reader.emplace(std::move(client));
    }
    // The text that a reader takes, or what it meets instead.
    std::string take()
    {
        std::string_view text;
        switch (reader->take(text, more)) {
        case SlotReader::Result::Taken:
            return std::string(text);
        case SlotReader::Result::Nothing:
            return "nothing";
        case SlotReader::Result::Withheld:
            return "withheld";
        case SlotReader::Result::Stale:
            return "stale";
        }
        return {};
    }

    std::optional<SlotWriter> writer;
    std::optional<SlotReader> reader;
    bool more = false;
};

// A text whose every byte tells which it is.
std::string patterned(int number, std::size_t size)
{
    return std::string(size, static_cast<char>('a' + number % 26));
}

} // namespace

TEST(Slot, textsAreTakenOnceAndReplacedWhileNobodyHasTakenThem)
{
    Slot slot;
    EXPECT_EQ(slot.take(), "nothing");
    EXPECT_FALSE(slot.writer->withhold());
    for (const std::size_t size : {1, 1343, 1344, 1345, 4096, 65536}) { // short ones and long ones in turn
        slot.writer->put(patterned(1, size), true);
        EXPECT_EQ(slot.take(), patterned(1, size));
        EXPECT_TRUE(slot.more);
        EXPECT_EQ(slot.take(), "nothing");

        slot.writer->put("old", false);
        EXPECT_TRUE(slot.writer->withhold());
        EXPECT_EQ(slot.take(), "withheld");
        EXPECT_FALSE(slot.writer->withhold());
        slot.writer->put(patterned(2, size), false);
        EXPECT_EQ(slot.take(), patterned(2, size));
        EXPECT_FALSE(slot.more);
        EXPECT_FALSE(slot.writer->withhold());

        EXPECT_FALSE(slot.writer->makeStale());
        slot.writer->put("old", false);
        EXPECT_TRUE(slot.writer->makeStale());
        EXPECT_EQ(slot.take(), "stale");
        EXPECT_TRUE(slot.writer->withhold());
        slot.writer->put("new", false);
        EXPECT_EQ(slot.take(), "new");
    }
}

TEST(Slot, readerNeverSeesATornTextAndEndsAtTheLast)
{
    Slot slot;
    constexpr int LAST = 20000;
    std::thread device([&] {
        for (int i = 1; i <= LAST; ++i) {
            (void)slot.writer->withhold(); // taken or not: the newer one comes
            slot.writer->put(patterned(i, static_cast<std::size_t>(i)), false);
        }
    });
    std::size_t last = 0;
    while (last < LAST) {
        const std::string text = slot.take();
        if (text == "nothing" || text == "withheld") {
            (void)::sched_yield();
            continue;
        }
        ASSERT_GT(text.size(), last);
        last = text.size();
        ASSERT_EQ(text, patterned(static_cast<int>(last), last));
    }
    device.join();
    EXPECT_EQ(slot.take(), "nothing");
}

TEST(Slot, rubbishFromTheOtherEndLeadsNowhere)
{
    SharedMemory device;
    SharedMemory client;
    share(SlotMemory::sizeFor(100), device, client);
    SlotWriter writer(std::move(device));
    SlotReader reader(std::move(client));
    SharedMemory rubbish;
    UniqueFd descriptor;
    for (int byte = 0; byte < 256; ++byte) {
        ASSERT_EQ(SharedMemory::create(SlotMemory::sizeFor(100), rubbish, descriptor), 0);
        std::memset(rubbish.data(), byte, 64); // the head: an index, and sizes beyond the memory
        SharedMemory again;
        ASSERT_EQ(SharedMemory::map(descriptor, 64, again), 0);
        SlotWriter spoiltWriter(std::move(again));
        SlotReader spoiltReader(std::move(rubbish));
        std::string_view text;
        bool more = false;
        (void)spoiltReader.take(text, more); // whatever it is, it lies within the memory
        EXPECT_LE(text.size(), 100u);
        EXPECT_EQ(std::string(text).size(), text.size());
        (void)spoiltWriter.withhold();
        spoiltWriter.put(std::string(200, 'x'), false); // cut to the room there is
        spoiltWriter.put("y", false);
    }
}

TEST(SharedMemory, takesOnlyMemoryThatNobodyCanCutShort)
{
    SharedMemory memory;
    const UniqueFd unsealed(::memfd_create("unsealed", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    ASSERT_EQ(::ftruncate(unsealed.get(), 4096), 0);
    EXPECT_EQ(SharedMemory::map(unsealed, 4096, memory), EPROTO);
    const UniqueFd device(::open("/dev/null", O_RDWR | O_CLOEXEC));
    EXPECT_EQ(SharedMemory::map(device, 0, memory), EPROTO);
    SharedMemory made;
    UniqueFd descriptor;
    ASSERT_EQ(SharedMemory::create(4096, made, descriptor), 0);
    EXPECT_EQ(SharedMemory::map(descriptor, 4097, memory), EPROTO);
    EXPECT_EQ(::ftruncate(descriptor.get(), 100), -1);
}

TEST(CallPage, carriesTextsAndAnswersBetweenThreads)
{
    SharedMemory mine;
    SharedMemory theirs;
    share(CallPage::sizeFor(1000), mine, theirs);
    CallPage device(std::move(mine));
    CallPage client(std::move(theirs));
    std::uint32_t descriptor = 0;
    std::string text;
    int status = -1;
    EXPECT_FALSE(device.takeAsked(descriptor, text));
    EXPECT_FALSE(client.awaitAnswer(std::chrono::milliseconds(1), status));
    EXPECT_EQ(client.textBytes(), 1000u);

    std::thread answering([&] {
        for (int i = 0; i < 1000; ++i) {
            while (!device.takeAsked(descriptor, text)) {
                (void)::sched_yield();
            }
            device.answer(text == patterned(i, static_cast<std::size_t>(i)) ? static_cast<int>(descriptor)
                                                                            : -1,
                          static_cast<std::size_t>(i % 4));
        }
    });
    for (int i = 0; i < 1000; ++i) {
        client.ask(static_cast<std::uint32_t>(i), patterned(i, static_cast<std::size_t>(i)));
        ASSERT_TRUE(client.awaitAnswer(std::chrono::seconds(60), status));
        ASSERT_EQ(status, i);
    }
    answering.join();
}

} // namespace kelp::link
