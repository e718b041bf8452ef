// SPDX-License-Identifier: Apache-2.0
// The platform's memory figures: over made-up trees of the kernel's files, and on the machine itself.

#include "platform/host/memory/PhysicalMemory.h"
#include "platform/host/syspage/SystemPage.h"

#include <devicefs/devicefs.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace kelp::platform;

namespace {

using Files = std::map<std::string, std::string>;

// A control group's folder below "/cg", in "/m" one of version 1, and the texts of its files; empty: no such
// file.
struct Group {
    std::string folder, limit;
    std::string usage = {}, statistics = {};
};

constexpr std::int64_t MIB = 1 << 20;
const std::string MACHINE = "MemTotal:  1000 kB\nMemFree:  5 kB\nMemAvailable:  600 kB\n";
const char UNLIMITED[] = "1024000, 614400";
const std::string UNREADABLE = "a directory in the file's place";
const std::string V2 = "30 25 0:26 / /cg rw shared:9 master:1 - cgroup2 cgroup rw,nsdelegate\n";
const std::string V1 =
    "24 1 0:22 / /cg/cpu rw - cgroup cgroup rw,cpu\n28 1 0:25 / /cg/m rw - cgroup  rw,cpuset,memory\n";
const std::string STAT2 =
    "anon 7\nfile 70\nactive_file 10000\ninactive_file 20000\nslab_reclaimable 3000\nslab 9000\n";
const std::string STAT1 =
    "cache 7\ninactive_file 5\nactive_file 5\ntotal_cache 70\ntotal_inactive_file 40000\n"
    "total_active_file 2000\ntotal_unevictable 9\n";

// A folder that stands for the root of the file system.
class Tree
{
public:
    explicit Tree(const Files &files) : _root(fs::temp_directory_path() / "memory-XXXXXX")
    {
        (void)::mkdtemp(_root.data()); // without it, the files below cannot be made either
        for (const auto &[path, text] : files) {
            add(path, text);
        }
    }
    ~Tree() { fs::remove_all(_root); }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;

    void add(const Group &group) const
    {
        const bool isV1 = group.folder.rfind("/m", 0) == 0;
        const std::string prefix = "/cg" + group.folder + "/memory.";
        add(prefix + (isV1 ? "limit_in_bytes" : "max"), group.limit);
        add(prefix + (isV1 ? "usage_in_bytes" : "current"), group.usage);
        add(prefix + "stat", group.statistics);
    }

    // The total and the available memory.
    std::string figures() const
    {
        const PhysicalMemory memory(_root);
        const auto text = [](auto figure) {
            return figure ? std::to_string(*figure) : "nothing";
        };
        return text(memory.total()) + ", " + text(memory.available());
    }

private:
    void add(const std::string &path, const std::string &text) const
    {
        const fs::path file = _root + path;
        fs::create_directories(text == UNREADABLE ? file : file.parent_path());
        text.empty() || text == UNREADABLE ? void() : void(std::ofstream(file) << text);
    }

    std::string _root;
};

// A figure in kB of one of the kernel's files, in bytes.
std::int64_t kernelFigure(const char *path, const std::string &name)
{
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(name + ':', 0) == 0) {
            return std::atoll(line.c_str() + name.size() + 1) * 1024;
        }
    }
    ADD_FAILURE() << path << " has no " << name;
    return -1;
}

// The extent of a name's ranges, found by the page's fixed offsets as applications do.
std::uint64_t extentOf(const std::string &name, const syspage *page)
{
    const char *bytes = reinterpret_cast<const char *>(page);
    const auto at = [=](std::size_t offset, auto value) {
        std::memcpy(&value, bytes + offset, sizeof value);
        return value;
    };
    const std::size_t table = at(12, std::uint16_t());
    std::uint64_t sum = 0;
    for (std::size_t entry = table; entry < table + at(14, std::uint16_t()); entry += 32) {
        if (bytes + at(48, std::uint16_t()) + at(entry + 18, std::uint16_t()) == name) {
            sum += at(entry + 8, std::uint64_t()) - at(entry, std::uint64_t()) + 1;
        }
    }
    return sum;
}

// Writes to each page, and, as the thread sanitizer counts none of it, to nothing else.
__attribute__((no_sanitize("thread"))) void touch(volatile char *memory, std::int64_t size)
{
    for (std::int64_t at = 0; at < size; at += 4096) {
        memory[at] = 1;
    }
}

int accessError(const std::string &path, int mode)
{
    errno = 0;
    return devicefs_access(path.c_str(), mode) == 0 ? 0 : errno;
}

} // namespace

TEST(Memory, theTightestControlGroupCounts)
{
    const struct {
        const char *what;
        std::string groups, mounts;
        std::vector<Group> files;
        const char *figures;
    } cases[] = {
        {"no groups", "", "", {}, UNLIMITED},
        {"v2", "1:cpu:/x\n0::/a:b/c\n", V2, {{"/a:b/c", "500000\n", "450000\n", STAT2}}, "500000, 83000"},
        {"v2, one ancestor has the least, another has the least left",
         "0::/a/b/c\n",
         V2,
         {{"/a/b/c", "max\n", "9999999\n"}, {"/a/b", "500000\n", "1000\n"}, {"/a", "900000\n", "890000\n"}},
         "500000, 10000"},
        {"more than the machine has", "0::/\n", V2, {{"", "2000000\n", "1999999\n"}}, UNLIMITED},
        {"use above the limit", "0::/\n", V2, {{"", "5\n", "9\n"}}, "5, 0"},
        {"more to take back than is used", "0::/\n", V2, {{"", "5000\n", "900\n", STAT2}}, "5000, 5000"},
        {"v1",
         "5:cpuset,memory:/a\n4:cpu:/b\n0::/\n",
         V1,
         {{"/m/a", "300000\n", "290000\n", STAT1}, {"/m", "9223372036854771712\n"}},
         "300000, 52000"},
        {"both, limited by v1",
         "5:memory:/a\n0::/b\n",
         V1 + V2,
         {{"/m/a", "300000\n"}, {"/b", "", "", STAT2}},
         "300000, 300000"},
        {"both, limited by v2",
         "5:memory:/a\n0::/b\n",
         V1 + V2,
         {{"/m/a", "9223372036854771712\n"}, {"/b", "300000\n"}},
         "300000, 300000"},
        {"container that shows its own group alone",
         "0::/docker/x/y\n",
         "3 1 0:2 /docker/x /cg/a\\040b ro - cgroup2 c rw\n",
         {{"/a b/y", "7"}, {"/a b", "6"}},
         "6, 6"},
        {"container that shows another group",
         "0::/docker/xy\n",
         "3 1 0:2 /docker/x /cg ro - cgroup2 c rw\n",
         {{"", "5"}, {"/y", "5"}},
         UNLIMITED},
        {"namespace below the mount",
         "0::/a\n",
         "3 1 0:2 /../.. /cg rw - cgroup2 c rw\n",
         {{"", "6"}, {"/a", "5"}},
         "6, 6"},
        {"group outside the namespace", "0::/../a\n", V2, {{"", "5"}, {"/a", "5"}}, UNLIMITED},
        {"deleted group", "0::/a/b (deleted)\n", V2, {{"/a", "6"}}, "6, 6"},
        {"rubbish",
         "0\n:\n0::/a",
         "1 2 3\n\n" + V2,
         {{"", "99999999999999999999"}, {"/a", "5 5\n"}},
         UNLIMITED},
        {"unreadable", "0::/a\n", V2, {{"/a", UNREADABLE}, {"", "9", UNREADABLE}}, "9, 9"},
    };
    for (const auto &one : cases) {
        const Tree tree({{"/proc/meminfo", MACHINE},
                         {"/proc/self/cgroup", one.groups},
                         {"/proc/self/mountinfo", one.mounts}});
        for (const Group &group : one.files) {
            tree.add(group);
        }
        EXPECT_EQ(tree.figures(), one.figures) << one.what;
    }
}

TEST(Memory, isUnknownWhereTheKernelDoesNotTell)
{
    const struct {
        Files files;
        const char *figures;
    } cases[] = {
        {{}, "nothing, nothing"},
        {{{"/proc/meminfo", "MemTotal: 10 kB\n"}}, "10240, nothing"},
        {{{"/proc/meminfo", "MemTotal: 18014398509481984 kB\nMemAvailable: 18014398509481983 kB"}},
         "nothing, 18446744073709550592"},
        {{{"/proc/meminfo", "MemTotal: -1 kB\nMemAvailable: 5 MB\n"}}, "nothing, nothing"},
    };
    for (const auto &one : cases) {
        EXPECT_EQ(Tree(one.files).figures(), one.figures);
    }
    const SystemPage page(0);
    EXPECT_EQ(extentOf("ram", &page.header), 0U);
    EXPECT_EQ(page.header.address_space.size, 0);
}

TEST(Memory, theSystemPageAndTheFreeMemoryAreThisMachines)
{
    const std::int64_t machine = kernelFigure("/proc/meminfo", "MemTotal");
    const auto total = static_cast<std::int64_t>(extentOf("ram", _syspage_ptr));
    const std::int64_t before = kernelFigure("/proc/meminfo", "MemAvailable");
    const std::int64_t available = devicefs_size("/proc");
    const std::int64_t after = kernelFigure("/proc/meminfo", "MemAvailable");

    EXPECT_EQ(static_cast<std::uint64_t>(total), PhysicalMemory().total());
    EXPECT_EQ(extentOf("memory", _syspage_ptr), extentOf("ram", _syspage_ptr));
    EXPECT_GT(total, MIB);
    EXPECT_LE(total, machine);
    EXPECT_GE(available, 0);
    EXPECT_LE(available,
              std::min(total, std::max(before, after) + machine / 8)); // others use memory meanwhile
    if (total == machine) {
        EXPECT_GE(available, std::min(before, after) - machine / 8);
    }
    EXPECT_GT(devicefs_size("//proc/"), 0);
    EXPECT_EQ(accessError("/proc", R_OK), 0);
}

TEST(Memory, aProcessUsesWhatItTouches)
{
    constexpr std::int64_t TOUCHED = 64 * MIB;
    const std::string path = "/proc/" + std::to_string(::getpid()) + "/as";
    const std::int64_t before = devicefs_size(path.c_str());
    void *memory = ::mmap(nullptr, TOUCHED, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    EXPECT_NEAR(devicefs_size(path.c_str()), before, 8 * MIB); // mapped is not used

    touch(static_cast<char *>(memory), TOUCHED);

    const std::int64_t after = devicefs_size("/proc/self/as");
    EXPECT_NEAR(after - before, TOUCHED, 8 * MIB);
    EXPECT_NEAR(after, kernelFigure("/proc/self/status", "VmRSS"), 8 * MIB);
    ::munmap(memory, TOUCHED);
}

TEST(Memory, anAddressSpaceIsThereAsLongAsItsProcess)
{
    const std::string own = "/proc/" + std::to_string(::getpid()) + "/as";
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    const std::string ended = "/proc/" + std::to_string(child) + "/as";
    siginfo_t information;
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(accessError(ended, F_OK), 0); // not yet waited for
    EXPECT_EQ(devicefs_size(ended.c_str()), 0);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);

    const struct {
        std::string path;
        int mode;
        int error;
    } cases[] = {
        {own, F_OK, 0},
        {own, R_OK, 0},
        {own, W_OK, EACCES},
        {own, X_OK, EACCES},
        {own, 8, EINVAL},
        {"//proc/self//as", R_OK, 0},
        {ended, F_OK, ENOENT},
        {ended, W_OK, ENOENT},
        {"/proc/99999999999/as", F_OK, ENOENT},
        {own + '/', 0, ENOENT},
        {"/proc/a/as", 0, ENOENT},
        {"/proc/self/as/as", 0, ENOENT},
        {"proc/self/as", 0, ENOENT},
        {"/proc/self/status", R_OK, 0}, // the host's
    };
    for (const auto &one : cases) {
        EXPECT_EQ(accessError(one.path, one.mode), one.error) << one.path << ' ' << one.mode;
    }
    EXPECT_EQ(devicefs_size(ended.c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
}
