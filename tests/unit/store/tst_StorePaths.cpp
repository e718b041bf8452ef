// SPDX-License-Identifier: Apache-2.0
// What may be opened, by whom, and what is told of paths.
#include "StoreTest.h"

#include <unistd.h>

namespace kelp::device {
namespace {

TEST(StorePaths, openAnswersAsThePathAndTheAccessDeserve)
{
    StoreClient client({.objects = 4});
    client.make("/dir/object", "");
    client.make("/o", "");
    client.open("/server?server", "rwc");
    const std::string longPart(256, 'p');
    const std::string longPath = "/" + std::string(255, 'a') + "/" + std::string(255, 'b') + "/" +
                                 std::string(255, 'c') + "/" + std::string(255, 'd') + "/";
    const struct {
        int error;
        std::string_view letters;
        std::vector<std::string> paths;
    } rows[] = {
        {0, "r", {"//dir///object", "/.all", "/dir/.all?delta,wait"}},
        {0, "rwc", {"/dir/object?delta,wait,nopersist"}},
        {0, "rc", {"/.all"}},
        {EEXIST, "rcx", {"/dir", "/dir/object", "/.all"}},
        {EISDIR, "r", {"/dir", "/", "/?delta"}},
        {EISDIR, "rwc", {"/dir/", "/new/"}},
        {ENOENT, "r", {"/new", "/new/", "/" + longPart.substr(1), longPath.substr(0, 1023)}},
        {ENOENT, "rc", {"/new/.all", "/new/.all/object"}},
        {ENOTDIR, "r", {"/dir/object/"}},
        {ENOTDIR, "wc", {"/dir/object/below", "/dir/.all/below"}},
        {EINVAL,
         "wc",
         {"", "relative", "/./a", "/a/..", "/a\nb", "/a\x7f", std::string("/a\0b", 4), "/a\xff"}},
        {EINVAL, "", {"/dir/object"}},
        {EINVAL, "r", {"/dir/object?", "/dir/object?delta,", "/dir/object?delta,delta", "/dir/object?Delta"}},
        {EINVAL, "w", {"/dir/object?delta", "/dir/object?wait", "/dir/object?server"}},
        {EINVAL, "r", {"/dir/object?server"}},
        {EINVAL, "rw", {"/dir/object?server,delta"}},
        {EBUSY, "rw", {"/dir/object?server", "/server?server"}},
        {ENAMETOOLONG, "wc", {"/" + longPart, longPath}},
        {ENOSPC, "wc", {"/fifth"}},
        {EACCES, "rw", {"/.all"}},
        {EACCES, "rt", {"/.all"}},
    };
    for (const auto &row : rows) {
        for (const std::string &path : row.paths) {
            EXPECT_EQ(client.tryOpen(path, row.letters), row.error) << path << " " << row.letters;
        }
    }
}

TEST(StorePaths, directoriesCountAndNothingIsMadeWhereTheyDoNotFit)
{
    StoreClient client({.objects = 4});
    client.make("/a/b", "");

    EXPECT_EQ(client.tryOpen("/c/d/e", "wc"), ENOSPC);
    Store::Status status;
    EXPECT_EQ(client.store.status("/c", status), ENOENT);
    EXPECT_EQ(client.tryOpen("/c/d", "wc"), 0);
    const DescriptorId watcher = client.open("/c/.all", "r");
    EXPECT_EQ(client.store.unlink("/c/d", StoreClient::OWNER), 0);
    EXPECT_EQ(client.tryOpen("/c/e/f", "wc"), ENOSPC); // it stays while somebody watches
    client.store.close(watcher);
    for (const char *path : {"/c", "/d/e", "/f/g"}) { // and counts no more afterwards
        EXPECT_EQ(client.tryOpen(path, "wc"), 0) << path;
        EXPECT_EQ(client.store.unlink(path, StoreClient::OWNER), 0) << path;
    }
}

TEST(StorePaths, theModeBitsDecideWhoMayReadWriteAndDelete)
{
    StoreClient client;
    DescriptorId made = 0;
    ASSERT_EQ(client.store.open("/o", flagsOf("wc", 0640), StoreClient::OWNER, made), 0);
    const Credentials superuser = {0, 0};
    const Credentials owner = {1000, 5};
    const Credentials group = {5, 1000};
    const Credentials other = {5, 5};
    EXPECT_EQ(client.tryOpen("/o", "rwt", superuser), 0);
    EXPECT_EQ(client.tryOpen("/o", "rwt", owner), 0);
    EXPECT_EQ(client.tryOpen("/o", "r", group), 0);
    EXPECT_EQ(client.tryOpen("/o", "w", group), EACCES);
    EXPECT_EQ(client.tryOpen("/o", "rt", group), EACCES);
    EXPECT_EQ(client.tryOpen("/o", "r", other), EACCES);
    EXPECT_EQ(client.store.access("/o", R_OK, group), 0);
    EXPECT_EQ(client.store.access("/o", R_OK | W_OK, group), EACCES);
    EXPECT_EQ(client.store.access("/.all", R_OK, other), 0);
    EXPECT_EQ(client.store.access("/.all", W_OK, superuser), EACCES);
    EXPECT_EQ(client.store.access("/none", F_OK, superuser), ENOENT);
    EXPECT_EQ(client.store.unlink("/o", group), EACCES);
    EXPECT_EQ(client.store.unlink("/o", owner), 0);
}

TEST(StorePaths, whatIsReservedOnlyTheDeviceWrites)
{
    StoreClient client({.objects = 2});
    ASSERT_EQ(client.store.reserveDirectory("/d/own/"), 0);
    client.store.close(client.open("/d/own/.all", "r"));
    EXPECT_EQ(client.store.reserveDirectory("/d/own"), EEXIST); // it stays, though empty
    DescriptorId made = 0;
    ASSERT_EQ(client.store.open("/d/own/o", flagsOf("wc"), {0, 0, true}, made), 0); // beyond the limit
    const Credentials superuser = {0, 0};
    const struct {
        int error;
        std::string_view letters, path;
    } rows[] = {
        {EACCES, "w", "/d/own/o"},          {EACCES, "rt", "/d/own/o"}, {EACCES, "rw", "/d/own/o?server"},
        {EACCES, "rc", "/d/own/new/below"}, {EISDIR, "wc", "/d/own"},   {0, "r", "/d/own/o?delta"},
        {ENOSPC, "wc", "/d/new"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(client.tryOpen(row.path, row.letters, superuser), row.error) << row.path << row.letters;
    }
    EXPECT_EQ(client.store.unlink("/d/own/o", superuser), EACCES);
    EXPECT_EQ(client.store.access("/d/own/o", W_OK, superuser), EACCES);
    EXPECT_EQ(client.store.access("/d/own", W_OK, superuser), EACCES);
    EXPECT_EQ(client.store.access("/d", W_OK, superuser) + client.store.access("/d/own/o", R_OK, superuser),
              0);
    EXPECT_EQ(client.store.unlink("/d/own/o", {0, 0, true}), 0);
}

TEST(StorePaths, statusAndListTellWhatIsThere)
{
    StoreClient client;
    client.make("/d/b", "level:n:87\n");
    client.make("/d/a/x", "");
    std::vector<Store::Entry> entries;
    Store::Status status;

    ASSERT_EQ(client.store.list("/d", entries), 0);
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].name + entries[1].name, "ab");
    EXPECT_EQ(entries[1].status.size, 14U); // "@b\nlevel:n:87\n"
    EXPECT_EQ(entries[1].status.mode, 0666U);
    EXPECT_EQ(entries[1].status.uid, 1000U);
    EXPECT_EQ(client.store.status("/d/", status), 0);
    EXPECT_EQ(client.store.list("/d/b", entries), ENOTDIR);
    EXPECT_EQ(client.store.unlink("/d", StoreClient::OWNER), EISDIR);
    EXPECT_EQ(client.store.unlink("/d/.all", StoreClient::OWNER), EACCES);
}

} // namespace
} // namespace kelp::device
