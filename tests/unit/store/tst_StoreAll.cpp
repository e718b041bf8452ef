// SPDX-License-Identifier: Apache-2.0
// What a subscriber of every object below a directory reads.
#include "StoreTest.h"

namespace kelp::device {
namespace {

using Ids = std::vector<DescriptorId>;

TEST(StoreAll, theFirstReadGivesEveryObjectInTheOrderOfThePaths)
{
    StoreClient client;
    client.make("/d/c", "x::1\n");
    client.make("/d/a/z", "y::2\n");
    client.make("/d/b", "");
    client.make("/elsewhere", "z::3\n");
    client.open("/d/server?server", "rwc");

    const DescriptorId all = client.open("/d/.all", "r");

    EXPECT_EQ(client.store.takeDue(), Ids{all});
    EXPECT_EQ(client.read(all), "@a/z\ny::2\n@b\n@c\nx::1\n");
    EXPECT_EQ(client.read(all), "");
}

TEST(StoreAll, laterReadsGiveWhatChangedWithItsFlags)
{
    StoreClient client;
    const DescriptorId first = client.make("/d/first", "a:n:1\nb:n:1\n");
    const DescriptorId second = client.make("/d/e/second", "a:n:1\n");
    const DescriptorId outside = client.make("/outside", "a:n:1\n");
    const DescriptorId whole = client.open("/d/.all", "r");
    const DescriptorId delta = client.open("/.all?delta", "r");
    client.read(whole);
    client.read(delta);

    client.store.write(second, "a:n:2\n");
    client.store.write(first, "-b\nc:n:1\n");
    EXPECT_EQ(client.store.takeDue(), (Ids{whole, delta}));
    EXPECT_EQ(client.read(whole), "@e/second\na:n:2\n@first\na:n:1\n-b\n+c:n:1\n");
    EXPECT_EQ(client.read(delta), "@d/e/second\na:n:2\n@d/first\n-b\n+c:n:1\n");

    client.store.write(outside, "a:n:2\n");
    EXPECT_EQ(client.read(whole), "");
    client.make("/d/new", "a:n:1\n");
    client.make("/d/short-lived", "a:n:1\n");
    client.store.unlink("/d/short-lived", StoreClient::OWNER);
    client.store.unlink("/d/first", StoreClient::OWNER);
    client.store.unlink("/d/e/second", StoreClient::OWNER);
    client.make("/d/e/second", "b:n:3\n");
    EXPECT_EQ(client.read(whole), "+@new\n+a:n:1\n-@first\n+@e/second\n+b:n:3\n");
    EXPECT_EQ(client.read(delta), "@outside\na:n:2\n+@d/new\n+a:n:1\n-@d/first\n+@d/e/second\n+b:n:3\n");
    client.make("/d/x", "");
    EXPECT_EQ(client.peek(whole), "+@x\n");
    client.store.unlink("/d/x", StoreClient::OWNER);
    EXPECT_EQ(client.peek(whole), "-@x\n"); // something has to replace that text, which nobody has read
    EXPECT_EQ(client.read(whole), "-@x\n");
}

TEST(StoreAll, aReadTakesWholeObjectsAndMoreFollows)
{
    StoreClient client({.objectBytes = 20});
    client.make("/d/a", "x::1\n"); // "@a\nx::1\n": 8 bytes
    client.make("/d/b", "x::2\n");
    const DescriptorId third = client.make("/d/c", "x::3\n");
    client.make("/d/d", "");
    const DescriptorId all = client.open("/d/.all", "r");

    const Store::Rendered first = client.store.render(all);
    EXPECT_EQ(first.text, "@a\nx::1\n@b\nx::2\n");
    EXPECT_TRUE(first.more);
    client.store.write(third, "x::4\n");
    client.store.commit(all);
    EXPECT_EQ(client.store.takeDue(), Ids{all});
    const Store::Rendered second = client.store.render(all);
    EXPECT_EQ(second.text, "@c\nx::4\n@d\n");
    EXPECT_FALSE(second.more);
    client.store.commit(all);
    EXPECT_EQ(client.read(all), "");

    client.make("/d/long/path/c", "x::12345\ny::\n"); // 16 bytes, with the long path 27
    client.make("/d/z", "");
    EXPECT_EQ(client.read(all), "*+@long/path/c\n");
    EXPECT_EQ(client.read(all), "+@z\n");
}

TEST(StoreAll, objectsThatGetAServerEndThere)
{
    StoreClient client;
    client.store.close(client.make("/o", "x::1\n"));
    const DescriptorId all = client.open("/.all", "r");
    client.read(all);

    client.open("/o?server", "rw");
    EXPECT_EQ(client.read(all), "-@o\n");
    const DescriptorId maker = client.open("/p?nopersist", "rc"); // that nobody publishes
    client.read(all);
    client.store.close(maker);
    EXPECT_EQ(client.read(all), "-!@p\n");
}

} // namespace
} // namespace kelp::device
