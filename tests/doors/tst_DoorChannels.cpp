// SPDX-License-Identifier: Apache-2.0
// Event channels: what is one, how many there are, and what becomes of one that nobody reads.

#include "DoorTest.h"
#include "platform/link/Limits.h"

#include <navigator/navigator.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>

#include <poll.h>

namespace kelp::test {

class DoorChannels : public DoorTest
{
protected:
    // Sends low-memory events until one is refused; returns how many were not.
    int fill(DoorClient &person, const std::string &application)
    {
        for (int sent = 0; sent < 1'000'000; ++sent) {
            const auto answer = lowMemory(person, application);
            if (answer.status) {
                EXPECT_EQ(answer.status, EAGAIN) << answer.text;
                return sent;
            }
        }
        ADD_FAILURE() << "the backlog has no bound";
        return 0;
    }

    // Whether the device has let its end go, whatever is still to be read.
    static bool isClosed(int channel)
    {
        pollfd socket{channel, 0, 0};
        return ::poll(&socket, 1, 0) > 0 && (socket.revents & POLLHUP);
    }

    static link::Reply lowMemory(DoorClient &person, const std::string &application)
    {
        return person.command("event", {{"name", "low-memory"}, {"severity", "1"}, {"app", application}});
    }
};

TEST_F(DoorChannels, OnlyASeqpacketSocketIsAChannel)
{
    startDevice();
    DoorClient client = application();
    const link::UniqueFd file(::open("/dev/null", O_RDWR | O_CLOEXEC));
    const link::UniqueFd folder(::open("/", O_PATH | O_CLOEXEC));
    const link::UniqueFd stream(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const link::UniqueFd datagram(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const link::UniqueFd internet(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));

    for (const int wrong : {-1, file.get(), folder.get(), stream.get(), datagram.get(), internet.get()}) {
        EXPECT_EQ(client.ask(link::OpenEvents{}, wrong).status, EINVAL) << wrong;
    }

    const link::UniqueFd channel = client.openEvents();
    EXPECT_EQ(awaitEvent(channel.get(), NAVIGATOR_APP_STATE).appState, NAVIGATOR_APP_FOREGROUND);
}

TEST_F(DoorChannels, ChannelsAreBoundedAndOneThatEndsMakesRoom)
{
    device::DoorLimits limits;
    limits.channelsPerProcess = 2;
    startDevice(limits);
    DoorClient client = application();
    link::UniqueFd first = client.openEvents();
    const link::UniqueFd second = client.openEvents();
    link::UniqueFd ours;
    link::UniqueFd theirs;
    ASSERT_EQ(link::socketPair(ours, theirs), 0);

    EXPECT_EQ(client.ask(link::OpenEvents{}, theirs.get()).status, EMFILE);
    first.reset();
    eventually([&] { return client.ask(link::OpenEvents{}, theirs.get()).status == 0; });

    awaitEvent(ours.get(), NAVIGATOR_APP_STATE); // the present state is told on the new one
    EXPECT_EQ(::send(second.get(), "x", 1, 0), 1);
    EXPECT_TRUE(traces("writes to its event channel"));
    awaitEvent(second.get(), NAVIGATOR_APP_STATE); // what had been sent is still there
    eventually([&] { return !nextEvent(second.get()); });
}

TEST_F(DoorChannels, UnreadEventsAreRefusedPastTheBacklogAndNoneIsLost)
{
    device::DoorLimits limits;
    limits.eventBacklog = 4;
    startDevice(limits);
    DoorClient deaf = application();
    const link::UniqueFd unread = deaf.openEvents();
    DoorClient other = application();
    const link::UniqueFd read = other.openEvents();
    awaitEvent(read.get(), NAVIGATOR_WINDOW_ACTIVE);
    DoorClient person = control();
    const std::string report = person.command("state").text;
    const auto idAt = [&](std::size_t from) {
        const std::size_t begin = report.find("\"application\",\"id\":\"", from) + 20;
        return report.substr(begin, report.find('"', begin) - begin);
    };
    const std::string deafId = idAt(0);
    const std::string otherId = idAt(report.find("\"application\"") + 1);

    const int accepted = fill(person, deafId);

    EXPECT_GT(accepted, 4);
    EXPECT_EQ(lowMemory(person, otherId).status, 0);
    awaitEvent(read.get(), NAVIGATOR_LOW_MEMORY);
    for (int i = 0; i < accepted; ++i) {
        awaitEvent(unread.get(), NAVIGATOR_LOW_MEMORY);
    }
    EXPECT_EQ(lowMemory(person, deafId).status, 0); // there is room again
    awaitEvent(unread.get(), NAVIGATOR_LOW_MEMORY);
}

TEST_F(DoorChannels, AThreadThatDoesNotReadKeepsNothingFromTheOthers)
{
    device::DoorLimits limits;
    limits.eventBacklog = 4;
    startDevice(limits);
    DoorClient client = application();
    const link::UniqueFd read = client.openEvents();
    const link::UniqueFd unread = client.openEvents();
    DoorClient person = control();

    while (!isClosed(unread.get())) {
        ASSERT_EQ(person.command("event", {{"name", "low-memory"}, {"severity", "1"}}).status, 0);
        awaitEvent(read.get(), NAVIGATOR_LOW_MEMORY);
    }

    EXPECT_TRUE(traces("event channel closed: it does not read its events"));
}

TEST_F(DoorChannels, EachOfTwoApplicationsGetsItsOwnEventsAndAnswers)
{
    startDevice();
    DoorClient first = application();
    const link::UniqueFd firstEvents = first.openEvents();
    awaitEvent(firstEvents.get(), NAVIGATOR_WINDOW_ACTIVE);
    std::optional<DoorClient> second = application();
    const link::UniqueFd secondEvents = second->openEvents();
    awaitEvent(secondEvents.get(), NAVIGATOR_WINDOW_ACTIVE);
    awaitEvent(firstEvents.get(), NAVIGATOR_WINDOW_INACTIVE); // only one is active

    EXPECT_EQ(second->ask(link::Request{link::RequestCode::CloseWindow, 0, {}, {}}).status, 0);
    awaitEvent(secondEvents.get(), NAVIGATOR_EXIT);
    second.reset();
    EXPECT_TRUE(traces("gone"));
    EXPECT_FALSE(nextEvent(secondEvents.get()) && nextEvent(secondEvents.get())); // its channel goes with it

    EXPECT_EQ(control().command("event", {{"name", "low-memory"}, {"severity", "2"}}).status, 0);
    EXPECT_EQ(awaitEvent(firstEvents.get(), NAVIGATOR_LOW_MEMORY).severity, NAVIGATOR_MEMORY_CRITICAL);
}

TEST_F(DoorChannels, WhoHasClosedItsChannelIsNotAskedAndFollowsWhenItOpensAnother)
{
    startDevice();
    DoorClient client = application();
    link::UniqueFd channel = client.openEvents();
    awaitEvent(channel.get(), NAVIGATOR_WINDOW_ACTIVE);
    DoorClient person = control();

    channel.reset();
    const link::Reply reply = person.command("event", {{"name", "rotate"}, {"angle", "90"}});

    EXPECT_NE(reply.text.find("takes no events: the screen is at 90 degrees"), std::string::npos)
        << reply.text;
    EXPECT_TRUE(traces("dropped orientation rotation-1 90: it takes no events"));
    channel = client.openEvents();
    EXPECT_EQ(awaitEvent(channel.get(), NAVIGATOR_ORIENTATION).angle, 90);
    awaitEvent(channel.get(), NAVIGATOR_ORIENTATION_DONE);
}

} // namespace kelp::test
