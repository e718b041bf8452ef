// SPDX-License-Identifier: Apache-2.0
// Objects that are served: messages in their order, who comes and goes, and the ends of both sides.
#include "StoreTest.h"

namespace kelp::device {
namespace {

using Ids = std::vector<DescriptorId>;

TEST(StoreServer, carriesMessagesBothWaysInTheirOrder)
{
    StoreClient client;
    client.store.close(client.make("/d/o", "old:n:1\n"));
    const DescriptorId server = client.open("/d/o?server", "rw");
    EXPECT_EQ(client.peek(server), "");
    const DescriptorId first = client.open("/d/o", "rw");
    const DescriptorId second = client.open("/d/o?delta", "rw");
    EXPECT_EQ(client.store.takeDue(), Ids{server});
    EXPECT_EQ(client.peek(first), "");

    EXPECT_EQ(client.store.write(second, "@o\nmsg::go\n-x\n"), 0);
    EXPECT_EQ(client.store.write(first, "msg::stay\n"), 0);
    EXPECT_EQ(client.store.write(first, ""), 0);
    EXPECT_TRUE(client.store.render(server).more);
    EXPECT_EQ(client.read(server), "+@o.1\n");
    EXPECT_EQ(client.store.takeDue(), Ids{server});
    EXPECT_EQ(client.read(server), "+@o.2\n");
    EXPECT_EQ(client.read(server), "@o.2\nmsg::go\n-x\n");
    EXPECT_FALSE(client.store.render(server).more);
    EXPECT_EQ(client.read(server), "@o.1\nmsg::stay\n");

    EXPECT_EQ(client.store.write(server, "@o.2\nres::gone\n"), 0);
    EXPECT_EQ(client.store.takeDue(), Ids{second});
    EXPECT_EQ(client.read(second), "@o\nres::gone\n");
    EXPECT_EQ(client.read(first), "");
    client.store.close(second);
    EXPECT_EQ(client.read(server), "-@o.2\n");
    EXPECT_EQ(client.store.write(server, "@o.2\nres::late\n"), ESTALE);
    client.open("/d/o", "rw");
    EXPECT_EQ(client.read(server), "+@o.3\n");
}

TEST(StoreServer, refusesWhatIsNoMessage)
{
    StoreClient client({.objectBytes = 64, .queuedMessages = 2, .queuedBytes = 20});
    const DescriptorId server = client.open("/o?server", "rwc");
    const DescriptorId writer = client.open("/o", "w");
    const DescriptorId reader = client.open("/o", "rw");
    const struct {
        DescriptorId descriptor;
        int error;
        std::vector<std::string> texts;
    } rows[] = {
        {server, EINVAL, {"a::\n", "@o\na::\n", "@p.1\na::\n", "@o.\na::\n", "@o.01\na::\n", "@o.1x\na::\n"}},
        {server, EINVAL, {"@o.1\na:n:x\n"}},
        {server, ESTALE, {"@o.7\na::\n", "@o.99999999999\na::\n"}},
        {server, 0, {"@o.1\na::\n"}}, // to one that does not subscribe: dropped
        {reader, EINVAL, {"@p\na::\n", "a:n\n"}},
        {reader, EMSGSIZE, {"a::" + std::string(58, 'x') + "\n"}}, // 62 bytes, and 5 of the name line
        {reader, 0, {"a::" + std::string(20, 'x') + "\n"}},        // alone, it fits
        {writer, EAGAIN, {"a::\n"}},
        {reader, EAGAIN, {"a::\n"}},
        {server, 0, {"@o.2\na::\n", "@o.2\na::\n"}},
        {server, EAGAIN, {"@o.2\na::\n"}},
    };
    for (const auto &row : rows) {
        for (const std::string &text : row.texts) {
            EXPECT_EQ(client.store.write(row.descriptor, text), row.error) << text;
        }
    }
    client.read(server);
    client.read(server);
    client.peek(server); // the message, which may have been read then
    for (const int error : {0, 0, EAGAIN}) {
        EXPECT_EQ(client.store.write(writer, "a::\n"), error);
    }
}

TEST(StoreServer, bothSidesReadWhatWaitsAndThenTheEnd)
{
    StoreClient client;
    const DescriptorId server = client.open("/o?server", "rwc");
    const DescriptorId other = client.open("/o", "rw");
    client.store.write(server, "@o.1\na:n:1\n");

    client.store.close(server);

    EXPECT_EQ(client.tryOpen("/o", "rw"), ENOENT);
    EXPECT_EQ(client.store.write(other, "a:n:1\n"), ESTALE);
    EXPECT_EQ(client.read(other), "@o\na:n:1\n");
    EXPECT_EQ(client.read(other), "-@o\n");
    EXPECT_EQ(client.read(other), "");
    client.store.close(other);
    EXPECT_EQ(client.store.takeDue(), Ids{});

    const DescriptorId unlinked = client.open("/p?server", "rwc");
    ASSERT_EQ(client.store.unlink("/p", StoreClient::OWNER), 0);
    EXPECT_EQ(client.store.write(unlinked, "@p.1\na:n:1\n"), ESTALE);
    EXPECT_EQ(client.read(unlinked), "-@p\n");
}

TEST(StoreServer, visitsWithoutAWordLeaveNothingUnlessTheyHaveBeenSeen)
{
    StoreClient client;
    const DescriptorId server = client.open("/o?server", "rwc");
    client.store.close(client.open("/o", "rw"));
    EXPECT_EQ(client.store.takeDue(), Ids{});

    const DescriptorId seen = client.open("/o", "rw");
    EXPECT_EQ(client.peek(server), "+@o.2\n");
    client.store.close(seen);
    const DescriptorId heard = client.open("/o", "rw");
    client.store.write(heard, "a:n:1\n");
    client.store.close(heard);
    for (const std::string_view text : {"+@o.2\n", "-@o.2\n", "+@o.3\n", "@o.3\na:n:1\n", "-@o.3\n", ""}) {
        EXPECT_EQ(client.read(server), text);
    }
}

} // namespace
} // namespace kelp::device
