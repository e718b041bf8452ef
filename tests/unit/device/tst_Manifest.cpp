// SPDX-License-Identifier: Apache-2.0
// Manifests, well-formed and not, and what lies where a process's manifest should be.
#include "device/files/MountType.h"
#include "device/manifest/ManifestFile.h"
#include "platform/link/UniqueFd.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include <fcntl.h>
#include <sched.h>
#include <sys/inotify.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelp::device {

namespace {

const std::string ARCHIVE = "Archive-Manifest-Version: 1.1\n\n";
const std::string PACKAGE = "Package-Type: application\nPackage-Name: pack\n\n";

// Its attributes or, as they are all or none, what is wrong with it.
std::string resultOf(const std::string &text)
{
    std::string result;
    const auto manifest = Manifest::parse(text, result);
    for (const auto &[name, value] : manifest ? manifest->attributes() : Manifest::Attributes()) {
        result += name + '=' + value + '|';
    }
    return result;
}

} // namespace

TEST(Manifest, isTheSectionsThatCountOrTheLineThatIsWrong)
{
    const std::pair<std::string, std::string> rows[] = {
        {"Archive-A: 1\n\nPackage-Type: library\n\nno application's", "Archive-A=1|Package-Type=library|"},
        {"Archive-A: 1\n\nPackage-B: 2", "Archive-A=1|Package-B=2|"},
        {"Archive-A: 1\n\nPackage-Type: Application\n", "Archive-A=1|Package-Type=Application|"},
        {"\xef\xbb\xbf"
         "Archive-A: 1\r\n\r\nPackage-Type: application\r\n\r\nApplication-C: 3\r\n\r\n\r\nrest",
         "Application-C=3|Archive-A=1|Package-Type=application|"},
        {"Archive-A: 1\n\nPackage-Type: appli\n cation\n\nApplication-C: 3",
         "Application-C=3|Archive-A=1|Package-Type=application|"},
        {"Archive-A: old\n x\nArchive-B: \nArchive-A: new\n  z\n\nPackage-: p",
         "Archive-A=new z|Archive-B=|Package-=p|"},
        {"Archive-A: b: c: \n\nPackage-B: \xff\t", "Archive-A=b: c: |Package-B=\xff\t|"},
        {"", "line 1: the Archive section has no attribute"},
        {"Archive-A: 1\n", "line 1: the Package section has no"},
        {"Archive-A: 1\n\n\nPackage-B: 2\n", "line 3: the Package section has no"},
        {"Archive-A: 1\n\n x\n", "line 3: it goes on with a line"},
        {"archive-A: 1\n", "line 1: a name in this section begins with \"Archive-\""},
        {"Archive-A: 1\n\tx\n", "line 2: a name in this section"},
        {"Archive-A:1\n", "line 1: a colon and a space"},
        {ARCHIVE + PACKAGE, "line 5: the Application section has no attribute"},
        {ARCHIVE + PACKAGE + "Application-C: 3\nx", "line 7: a name in this section begins with \"App"},
    };
    for (const auto &[text, result] : rows) {
        const std::string whole = resultOf(text);
        EXPECT_EQ(result.ends_with('|') ? whole : whole.substr(0, result.size()), result) << text;
    }
}

TEST(Manifest, titleAndVersionAreTheApplicationsElseThePackages)
{
    const auto both = Manifest::parse(ARCHIVE + "Package-Version: 1\n" + PACKAGE +
                                      "Application-Name: Notes\nApplication-Version: \n");
    ASSERT_TRUE(both);
    EXPECT_EQ(both->title(), "Notes");
    EXPECT_EQ(both->version(), "1");

    const auto neither = Manifest::parse(ARCHIVE + "Package-Id: x\n");
    ASSERT_TRUE(neither);
    EXPECT_EQ(neither->title() + neither->version(), "");
}

TEST(ManifestFile, whateverLiesThereNobodyWaitsForIt)
{
    char pattern[] = "/tmp/kelp-manifest.XXXXXX";
    const std::filesystem::path folder = ::mkdtemp(pattern);
    std::filesystem::create_directories(folder / "app/META-INF");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder); // this process's
    const std::string file = "app/META-INF/MANIFEST.MF";
    const std::string outside = file + ": leads out of the working directory or onto another file system";
    const auto problem = [] {
        const ManifestReading reading = readManifest(::getpid());
        EXPECT_FALSE(reading.manifest);
        return reading.problem;
    };

    EXPECT_EQ(problem(), ""); // there is none
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    const int writer = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC); // as one, it would hear of an open
    ASSERT_GE(::inotify_add_watch(writer, file.c_str(), IN_OPEN), 0);
    EXPECT_EQ(problem(), file + ": is no regular file");
    char heard[256];
    EXPECT_EQ(::read(writer, heard, sizeof heard), -1) << "it has been opened";
    ::close(writer);
    std::filesystem::remove(file);
    const std::pair<std::string, std::string> links[] = {
        {"/dev/zero", outside},
        {"MANIFEST.MF", file + ": cannot be opened: Too many levels of symbolic links"},
        {"..", file + ": is no regular file"},
        {"missing", ""},
    };
    for (const auto &[target, expected] : links) {
        std::filesystem::create_symlink(target, file);
        EXPECT_EQ(problem(), expected) << target;
        std::filesystem::remove(file);
    }
    std::ofstream(file) << ARCHIVE;
    EXPECT_EQ(problem(), file + ": line 2: the Package section has no attribute");
    const std::string whole = ARCHIVE + "Package-Name: ";
    std::ofstream(file) << whole << std::string((1 << 20) - whole.size(), 'x');
    EXPECT_TRUE(readManifest(::getpid()).manifest);
    std::ofstream(file, std::ios::app) << 'x';
    EXPECT_EQ(problem(), file + ": has more than 1048576 bytes");
    if (::geteuid() != 0) { // whom no mode keeps out
        ASSERT_EQ(::chmod(file.c_str(), 0), 0);
        EXPECT_EQ(problem(), file + ": cannot be opened: Permission denied");
    }
    EXPECT_FALSE(readManifest(0).manifest);

    std::filesystem::current_path(before);
    std::filesystem::remove_all(folder);
}

// Mounts a file system whose server never answers at "app" in the working directory, in name spaces of its own.
bool mountTheSilent()
{
    const std::string uid = "0 " + std::to_string(::geteuid()) + " 1";
    const std::string gid = "0 " + std::to_string(::getegid()) + " 1";
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << uid;
    std::ofstream("/proc/self/gid_map") << gid;
    const int server = ::open("/dev/fuse", O_RDWR); // left open: without it, everybody gets an error
    const std::string options = "fd=" + std::to_string(server) + ",rootmode=40000,user_id=0,group_id=0";
    return server >= 0 && ::mount("none", "/tmp", "tmpfs", 0, nullptr) == 0 && ::chdir("/tmp") == 0 &&
           ::mkdir("app", 0700) == 0 && ::mount("silent", "app", "fuse", 0, options.c_str()) == 0;
}

TEST(ManifestFile, aFileSystemThatDoesNotAnswerHoldsUpNobody)
{
    constexpr int CANNOT_MOUNT = 77;
    const pid_t child = ::fork();
    if (child == 0) {
        (void)::alarm(20); // where it hangs
        ::_exit(!mountTheSilent() ? CANNOT_MOUNT : readManifest(::getpid()).problem.empty());
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    if (status == W_EXITCODE(CANNOT_MOUNT, 0)) {
        GTEST_SKIP() << "this user cannot mount FUSE";
    }
    EXPECT_EQ(status, 0);
}

TEST(ManifestFile, mountsThatOnlyTheProcessSeesAreNotReliedOn)
{
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isPrivate = ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && ::chdir("/tmp") == 0;
        (void)!::write(ready[1], isPrivate ? "y" : "n", 1);
        (void)::pause();
    }
    char answer = 0;
    ASSERT_EQ(::read(ready[0], &answer, 1), 1);

    const std::string problem = readManifest(child).problem;

    (void)::kill(child, SIGKILL);
    (void)::waitpid(child, nullptr, 0);
    ::close(ready[0]);
    ::close(ready[1]);
    if (answer != 'y') {
        GTEST_SKIP() << "this user cannot make namespaces";
    }
    EXPECT_NE(problem.find("a mount that only the process sees"), std::string::npos) << problem;
}

TEST(MountType, isReadWithoutAskingTheFileSystem)
{
    const link::UniqueFd processes(::open("/proc", O_PATH | O_CLOEXEC));
    EXPECT_EQ(mountType(processes.get()), "proc");
    EXPECT_TRUE(mayNotAnswer("fuse.sshfs") && mayNotAnswer("nfs4"));
    EXPECT_FALSE(mayNotAnswer("fuseblk") || mayNotAnswer("overlay"));
}

} // namespace kelp::device
