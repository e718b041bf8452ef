// SPDX-License-Identifier: Apache-2.0
// What publishers may write, and what a subscriber of one object reads after it.
#include "StoreTest.h"

namespace kelp::device {
namespace {

using Ids = std::vector<DescriptorId>;

TEST(StoreObjects, whatChangedBetweenTwoReadsCarriesItsFlags)
{
    const struct {
        const char *what;
        std::vector<std::string_view> writes;
        std::string_view whole;
        std::string_view delta;
    } rows[] = {
        {"nothing", {"", "@o\n", "-nobody\n"}, "", ""},
        {"set", {"b::new\n"}, "@o\na:n:1\nb::new\nc::3\n", "@o\nb::new\n"},
        {"same value", {"a:n:1\n"}, "@o\na:n:1\nb:n:2\nc::3\n", "@o\na:n:1\n"},
        {"created", {"d:n:4\n"}, "@o\na:n:1\nb:n:2\nc::3\n+d:n:4\n", "@o\n+d:n:4\n"},
        {"deleted", {"-b\n"}, "@o\na:n:1\n-b\nc::3\n", "@o\n-b\n"},
        {"created, then changed", {"d::\n", "d::x\n"}, "@o\na:n:1\nb:n:2\nc::3\n+d::x\n", "@o\n+d::x\n"},
        {"deleted, then created", {"-a\n", "a::x\n"}, "@o\nb:n:2\nc::3\n+a::x\n", "@o\n+a::x\n"},
        {"created, then deleted", {"d::\n", "-d\n"}, "@o\na:n:1\nb:n:2\nc::3\n", "@o\n"},
        {"deleted twice", {"-a\n", "a::x\n", "-a\n"}, "@o\nb:n:2\nc::3\n-a\n", "@o\n-a\n"},
        {"last line counts", {"@o\na::x\n-b\na::y\nb::z\n"}, "@o\na::y\nb::z\nc::3\n", "@o\na::y\nb::z\n"},
        {"created and deleted in one", {"d::x\n-d\n"}, "", ""},
        {"order within one",
         {"-a\n", "d::\na::\ne::\n"},
         "@o\nb:n:2\nc::3\n+d::\n+a::\n+e::\n",
         "@o\n+d::\n+a::\n+e::\n"},
    };
    for (const auto &row : rows) {
        StoreClient client;
        const DescriptorId publisher = client.make("/o", "a:n:1\nb:n:2\nc::3\n");
        const DescriptorId whole = client.open("/o", "r");
        const DescriptorId delta = client.open("/o?delta", "r");
        EXPECT_EQ(client.read(whole), "@o\na:n:1\nb:n:2\nc::3\n");
        EXPECT_EQ(client.read(delta), "@o\na:n:1\nb:n:2\nc::3\n");

        for (const std::string_view text : row.writes) {
            EXPECT_EQ(client.store.write(publisher, text), 0) << row.what;
        }

        EXPECT_EQ(client.store.takeDue(), row.whole.empty() ? Ids() : (Ids{whole, delta})) << row.what;
        EXPECT_EQ(client.peek(whole), row.whole) << row.what;
        EXPECT_EQ(client.read(whole), row.whole) << row.what; // the same until it has been read
        EXPECT_EQ(client.read(delta), row.delta) << row.what;
        EXPECT_EQ(client.read(whole) + client.read(delta), "") << row.what;
    }
}

TEST(StoreObjects, oneBadLineLeavesEverythingAsItWas)
{
    StoreClient client;
    const DescriptorId publisher = client.make("/o", "a:n:1\n");
    const DescriptorId subscriber = client.open("/o", "r");
    client.read(subscriber);
    for (const std::string_view text :
         {"a:n:2",           "a:n:2\nb\n",      "a:n:2\n\n",        "a:n:2\nb:x\n",    "a:n:2\nb:n:x\n",
          "a:n:2\nb:n:1.\n", "b:n:\n",          "b:n:-\n",          "b:n:1.2.3\n",     "b:n:.5\n",
          "b:n:12a\n",       "b:n:01\n",        "a:n:2\nb:b:yes\n", "b:c:\\\n",        "a:n:2\nb:json:{\n",
          "a:n:2\n+b:n:1\n", "a:n:2\n-b:n:1\n", "a:n:2\n-!b\n",     "@other\na:n:2\n", "a:n:2\n@o\n",
          "+@o\na:n:2\n",    "-@o\n",           "a:n:2\nb::\xff\n", "@o\n@o\n"}) {
        EXPECT_EQ(client.store.write(publisher, text), EINVAL) << text;
    }
    EXPECT_EQ(client.store.takeDue(), Ids{});
    EXPECT_EQ(client.read(client.open("/o", "r")), "@o\na:n:1\n");
    EXPECT_EQ(client.store.write(publisher, "b:n:-1.50e3\nc:n:-0.25\nd:b:false\ne:c:\\n\nf:n:0\n"), 0);
}

TEST(StoreObjects, aSubscriberIsDueOnceForAllThatItHasNotBeenTold)
{
    StoreClient client;
    const DescriptorId publisher = client.make("/o", "");
    client.make("/p", "");
    const DescriptorId subscriber = client.open("/o", "r");
    EXPECT_EQ(client.store.takeDue(), Ids{subscriber}); // also of an empty object, at once
    EXPECT_EQ(client.store.takeDue(), Ids{});
    EXPECT_EQ(client.read(subscriber), "@o\n");

    client.store.write(publisher, "a:n:1\n");
    client.store.write(publisher, "a:n:2\n");
    EXPECT_EQ(client.store.takeDue(), Ids{subscriber});
    client.store.write(publisher, "a:n:3\n");
    EXPECT_EQ(client.peek(subscriber), "@o\n+a:n:3\n");
    EXPECT_EQ(client.store.takeDue(), Ids{}); // it has been given

    client.store.write(publisher, "b:n:1\n");
    client.store.commit(subscriber); // of what was given, without b
    EXPECT_EQ(client.store.takeDue(), Ids{subscriber});
    EXPECT_EQ(client.read(subscriber), "@o\na:n:3\n+b:n:1\n");
    client.store.commit(subscriber);
    EXPECT_EQ(client.peek(subscriber), "");
}

TEST(StoreObjects, truncationIsFlaggedAndDropsWhatWentBefore)
{
    StoreClient client;
    client.make("/o", "a:n:1\nb:n:2\n");
    const DescriptorId delta = client.open("/o?delta", "r");
    client.read(delta);

    const DescriptorId publisher = client.open("/o", "wt");
    EXPECT_EQ(client.peek(delta), "#@o\n");
    client.store.write(publisher, "b:n:3\nc:n:1\n-c\n");
    EXPECT_EQ(client.read(delta), "#@o\n+b:n:3\n");
    EXPECT_EQ(client.read(client.open("/o", "r")), "@o\nb:n:3\n");
}

TEST(StoreObjects, unlinkingGivesOneLastTextAndEndsTheObject)
{
    StoreClient client;
    const DescriptorId publisher = client.make("/d/o", "a:n:1\n");
    const DescriptorId subscriber = client.open("/d/o?delta", "r");
    EXPECT_EQ(client.store.write(subscriber, "a:n:2\n"), EBADF);
    EXPECT_EQ(client.peek(publisher), "");

    ASSERT_EQ(client.store.unlink("/d/o", StoreClient::OWNER), 0);
    EXPECT_EQ(client.store.unlink("/d/o", StoreClient::OWNER), ENOENT);
    client.make("/d/o", "b:n:1\n");

    EXPECT_EQ(client.store.takeDue(), Ids{subscriber});
    EXPECT_EQ(client.read(subscriber), "-@o\n");
    EXPECT_EQ(client.store.write(publisher, "a:n:2\n"), ESTALE);
    client.store.close(publisher);
    EXPECT_EQ(client.read(subscriber), "");
    EXPECT_EQ(client.store.takeDue(), Ids{});
    EXPECT_EQ(client.read(client.open("/d/o", "r")), "@o\nb:n:1\n");
}

TEST(StoreObjects, textsAtTheLargestSizeFitAndLargerOnesChangeNothing)
{
    StoreClient client({.objectBytes = 40});
    const DescriptorId publisher = client.make("/o", "a::123456789012\nb::123456789012\n"); // 3 + 32 bytes
    const DescriptorId delta = client.open("/o?delta", "r");
    client.read(delta);

    EXPECT_EQ(client.store.write(publisher, "-b\nc::\na::123456789012345678901234567890\n"), EMSGSIZE);
    EXPECT_EQ(client.store.write(publisher, "c::12\n"), EMSGSIZE);
    EXPECT_EQ(client.peek(delta), "");
    EXPECT_EQ(client.store.write(publisher, "c::1\n"), 0);
    EXPECT_EQ(client.read(delta), "@o\n+c::1\n");

    client.store.write(publisher, "-a\n-b\n-c\n");
    client.read(delta);
    const DescriptorId whole = client.open("/o", "r");
    client.read(whole);
    const std::string full =
        "a::" + std::string(33, 'x') + "\n"; // with the name line 40 bytes, and no room for flags
    EXPECT_EQ(client.store.write(publisher, full), 0);
    EXPECT_EQ(client.read(whole), "@o\n" + full);
    EXPECT_EQ(client.read(delta), "@o\n" + full);
    client.store.close(client.open("/o", "wt"));
    EXPECT_EQ(client.store.write(publisher, full), 0);
    EXPECT_EQ(client.read(whole), "@o\n" + full);
    EXPECT_EQ(client.read(delta), "*#@o\n"); // what it keeps is wrong: it has to know

    client.store.write(publisher, "a::\nb::\nc::\n");
    client.read(delta);
    // What has changed with its flags would be longer than the object may be.
    client.store.write(publisher, "-a\n");
    client.store.write(publisher, "-b\n-c\na::1\n");
    client.store.write(publisher, "b::2\nc::3\nd::4\ne::5\nf::6\ng::7\n");
    EXPECT_EQ(client.read(delta), "#@o\na::1\nb::2\nc::3\nd::4\ne::5\nf::6\ng::7\n");
}

TEST(StoreObjects, subscribersTooFarBehindGetTheWholeObjectAsTruncated)
{
    StoreClient client({.rememberedNames = 2});
    const DescriptorId publisher = client.make("/o", "a::\nb::\nc::\nd::\n");
    const DescriptorId slow = client.open("/o?delta", "r");
    const DescriptorId quick = client.open("/o?delta", "r");
    client.read(slow);
    client.read(quick);
    for (const std::string text : {"-a\n", "-b\n", "-c\n"}) {
        client.store.write(publisher, text);
        EXPECT_EQ(client.read(quick), "@o\n" + text);
    }
    EXPECT_EQ(client.read(slow), "#@o\n-c\nd::\n");
}

TEST(StoreObjects, whatIsPublishedWithNopersistGoesWithTheLastPublisher)
{
    StoreClient client;
    const DescriptorId first = client.make("/o", "a:n:1\n");
    const DescriptorId second = client.open("/o?nopersist", "w");
    client.store.write(second, "a:n:2\nb:n:2\nc:n:2\n");
    client.store.write(first, "b:n:3\n");
    const DescriptorId delta = client.open("/o?delta", "r");
    client.read(delta);

    client.store.close(second);
    EXPECT_EQ(client.peek(delta), "");
    client.store.close(first);
    EXPECT_EQ(client.read(delta), "@o\n-!a\n-!c\n");
    EXPECT_EQ(client.read(client.open("/o", "r")), "@o\nb:n:3\n");

    const DescriptorId publisher = client.open("/gone?nopersist", "wc");
    const DescriptorId subscriber = client.open("/gone", "r");
    client.store.close(publisher);
    EXPECT_EQ(client.read(subscriber), "-!@gone\n");
    EXPECT_EQ(client.tryOpen("/gone", "r"), ENOENT);
}

} // namespace
} // namespace kelp::device
