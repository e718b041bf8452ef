// SPDX-License-Identifier: Apache-2.0
// Who may come in through the device's door and stay: whoever breaks the protocol loses the connection, and nobody
// else notices.

#include "DoorTest.h"
#include "platform/link/Limits.h"

#include <navigator/navigator.h>

#include <cerrno>

#include <sys/stat.h>
#include <sys/syscall.h>

namespace kelp::test {

namespace {

using link::Role;

const link::Hello HELLO{link::PROTOCOL_VERSION, Role::Application};
const link::Request CLEAR_PROMPT{link::RequestCode::ClearClosePrompt, 0, {}, {}};

// What a bad client sends, after hello if it has a role, and what the trace says of it then.
struct Misdeed {
    const char *name;
    std::optional<Role> role;
    std::string bytes;
    bool passesDescriptor;
    const char *reason;
};

std::vector<Misdeed> misdeeds()
{
    const auto bytesOf = [](link::Body body) {
        return link::encode({7, std::move(body)});
    };
    const std::string hello = bytesOf(HELLO);
    const std::string request = bytesOf(CLEAR_PROMPT);
    const std::string command = bytesOf(link::Command{"state", {}});
    const std::string opening = bytesOf(link::OpenEvents{});
    return {
        {"nothing at all", {}, "", false, ""},
        {"no message", {}, "rubbish", false, "no message"},
        {"cut short", {}, hello.substr(0, hello.size() - 1), false, "no message"},
        {"something behind it", {}, hello + '\0', false, "no message"},
        {"too long", {}, std::string(link::MAX_MESSAGE_BYTES + 1, 'x'), false, "too long"},
        {"request before hello", {}, request, false, "first message"},
        {"hello with a descriptor", {}, hello, true, "descriptor"},
        {"hello again", Role::Application, hello, false, "not one that it may send"},
        {"the device's own words", Role::Application, bytesOf(link::Event{}), false,
         "not one that it may send"},
        {"a command of an application", Role::Application, command, false, "not one that it may send"},
        {"a request with a descriptor", Role::Application, request, true, "descriptor"},
        {"a request of a control", Role::Control, request, false, "not one that it may send"},
        {"events for a control", Role::Control, opening, true, "not one that it may send"},
    };
}

} // namespace

class DoorConnections : public DoorTest
{
};

TEST_F(DoorConnections, WhoBreaksTheProtocolLosesTheConnectionAndHarmsNobody)
{
    startDevice();
    DoorClient bystander = application();
    const link::UniqueFd events = bystander.openEvents();
    const link::UniqueFd descriptor(::dup(events.get()));

    for (const Misdeed &misdeed : misdeeds()) {
        SCOPED_TRACE(misdeed.name);
        DoorClient client = misdeed.role ? DoorClient(directory(), *misdeed.role) : DoorClient(directory());
        ASSERT_EQ(client.sendBytes(misdeed.bytes, misdeed.passesDescriptor ? descriptor.get() : -1), 0);
        EXPECT_FALSE(client.receive());
        EXPECT_TRUE(traces(misdeed.reason));
        EXPECT_EQ(bystander.ask(CLEAR_PROMPT).status, 0);
    }
    EXPECT_EQ(control().command("event", {{"name", "exit"}}).status, 0);
    awaitEvent(events.get(), NAVIGATOR_EXIT);
}

TEST_F(DoorConnections, AnotherVersionIsToldSo)
{
    startDevice();
    DoorClient client(directory());

    const link::Reply answer = client.ask(link::Hello{link::PROTOCOL_VERSION + 1, Role::Application});

    EXPECT_EQ(answer.status, EPROTO);
    EXPECT_NE(answer.text.find("version"), std::string::npos);
    EXPECT_FALSE(client.receive());
}

TEST_F(DoorConnections, SilentClientsGiveWayAndGreetedOnesDoNot)
{
    device::DoorLimits limits;
    limits.connections = 2;
    startDevice(limits);
    DoorClient oldest(directory());
    DoorClient younger(directory());

    DoorClient first = application();
    EXPECT_FALSE(oldest.receive());
    EXPECT_EQ(younger.ask(HELLO).status, 0);

    DoorClient late(directory());
    const link::Reply refusal = late.ask(HELLO);
    EXPECT_EQ(refusal.status, EMFILE);
    EXPECT_NE(refusal.text.find("limit"), std::string::npos);
    EXPECT_FALSE(late.receive());
    EXPECT_EQ(first.ask(CLEAR_PROMPT).status, 0);
    EXPECT_EQ(younger.ask(CLEAR_PROMPT).status, 0);
}

TEST_F(DoorConnections, AClientThatLeavesItsRepliesUnreadLosesItsConnection)
{
    device::DoorLimits limits;
    limits.replyBacklogBytes = std::size_t(64) << 10;
    startDevice(limits);
    DoorClient bystander = application();
    DoorClient deaf = control();

    int error = 0;
    for (int i = 0; i < 1'000'000 && !error; ++i) {
        error = deaf.send(link::Command{"no such command", {}});
    }

    EXPECT_TRUE(error == EPIPE || error == ECONNRESET)
        << error; // the latter where replies had come meanwhile
    EXPECT_TRUE(traces("does not read its replies"));
    EXPECT_EQ(bystander.ask(CLEAR_PROMPT).status, 0);
}

TEST_F(DoorConnections, AnotherUserIsNotLetIn)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    startDevice();
    // As far from safe as a user could make it by hand.
    ASSERT_EQ(::chmod(directory().c_str(), 0755), 0);
    ASSERT_EQ(::chmod((directory() + "/socket").c_str(), 0666), 0);
    constexpr uid_t NOBODY = 65534;

    ASSERT_EQ(::syscall(SYS_setresuid, -1, NOBODY, -1), 0); // the system call changes this thread alone
    std::optional<DoorClient> stranger;
    EXPECT_NO_THROW(stranger.emplace(directory()));
    ASSERT_EQ(::syscall(SYS_setresuid, -1, 0, -1), 0);

    ASSERT_TRUE(stranger);
    EXPECT_FALSE(stranger->receive());
    EXPECT_TRUE(traces("of another user (uid 65534)"));
}

} // namespace kelp::test
