// SPDX-License-Identifier: Apache-2.0
// FileSystemInfo, on file systems that this program makes up: it has a statvfs() of its own.

#include "MethodList.h"

#include <kelp/FileSystemInfo.h>

#include <QtTest/QtTest>

#include <cerrno>
#include <map>
#include <string>

#include <sys/statvfs.h>

using kelp::FileSystemInfo;

namespace {

constexpr quint64 UNCOUNTED = Q_UINT64_C(1) << 32; // above what is used of a field

// By path. Others do not exist.
std::map<std::string, struct statvfs> s_fileSystems;

struct statvfs fileSystem(unsigned long id, unsigned long fragmentSize, fsblkcnt_t blocks)
{
    struct statvfs status = {};
    status.f_fsid = id;
    status.f_bsize = 4096;
    status.f_frsize = fragmentSize;
    status.f_blocks = blocks;
    status.f_bfree = UNCOUNTED + 2000000;
    status.f_bavail = 1000000;
    return status;
}

// What DISK_ALIMIT says (null: not set), and by how much it makes the figures of the root smaller.
const std::pair<const char *, qint64> RESERVES[] = {{nullptr, 0},
                                                    {"", 0},
                                                    {"100", 409600},
                                                    {"-100", -409600},
                                                    {"3000000", 12288000000},
                                                    {"100 blocks", 0},
                                                    {"0x10", 0},
                                                    {"9223372036854775807", -4096}, // times 4096, in 64 bits
                                                    {"9223372036854775808", 0}};    // no longer a number

const struct {
    unsigned long fragmentSize;
    fsblkcnt_t blocks;
    qint64 gigabytes;
} CAPACITIES[] = {
    {1, 499999999, 0},           {1, 500000000, 1},           {1, 1499999999, 1},
    {1, 1500000000, 2},          {1, 2499999999, 2},          {1, 2500000000, 4},
    {100000000, 54, 4},          {100000000, 55, 8},          {100000000, 159, 16},
    {100000000, 234, 16},        {100000000, 235, 32},        {1000000000, 3221225471, 2147483648},
    {1000000000, 3221225472, 0}, {4294967295, 4294967295, 0}, {UNCOUNTED + 1000000000, UNCOUNTED + 3, 4}};

} // namespace

int statvfs(const char *path, struct statvfs *status) noexcept
{
    const auto found = s_fileSystems.find(path);
    const bool isThere = found != s_fileSystems.end();
    *status = isThere ? found->second : fileSystem(7, 1, 1);
    errno = isThere ? EIO : ENOENT; // after a success it means nothing
    return isThere ? 0 : -1;
}

class tst_FileSystemInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        s_fileSystems = {{"/", fileSystem(7, 512, UNCOUNTED + 10000000)},
                         {"/h\xc3\xa4", fileSystem(UNCOUNTED + 7, 512, 10000000)}, // the root's too
                         {"/data", fileSystem(8, 512, 10000000)}};
    }

    void theReserveIsHeldBackOnTheRootOnly()
    {
        for (const auto &[limit, reserve] : RESERVES) {
            limit ? qputenv("DISK_ALIMIT", limit) : qunsetenv("DISK_ALIMIT");
            FileSystemInfo info;
            qputenv("DISK_ALIMIT", "1"); // too late
            for (const QString &path : {QString("/"), QString::fromUtf8("/h\xc3\xa4"), QString("/data")}) {
                QCOMPARE(info.fileSystemCapacity(path), 5120000000 - (path == "/data" ? 0 : reserve));
                QCOMPARE(info.availableFileSystemSpace(path), 8192000000 - (path == "/data" ? 0 : reserve));
            }
            QCOMPARE(info.physicalCapacity(), 4000000000);
        }
    }

    void aFailedQueryKeepsItsErrorUntilTheNext()
    {
        qputenv("DISK_ALIMIT", "100");
        const auto root = s_fileSystems.extract("/").mapped();
        FileSystemInfo info; // without a root: holds nothing back, ever
        QCOMPARE(QString::number(info.error()) + info.errorString(), "0Success");
        for (int query = 0; query < 3; ++query) {
            QCOMPARE(query == 0   ? info.fileSystemCapacity("/gone")
                     : query == 1 ? info.availableFileSystemSpace("/gone")
                                  : info.physicalCapacity(),
                     -1);
            QCOMPARE(QString::number(info.error()) + info.errorString(), "2No such file or directory");
            QCOMPARE(info.availableFileSystemSpace("/data"), 8192000000);
            QCOMPARE(info.error(), 0);
        }
        s_fileSystems["/"] = root;
        QCOMPARE(info.physicalCapacity(), 4000000000);
        QCOMPARE(info.fileSystemCapacity("/"), 5120000000);
        QCOMPARE(info.error(), 0);
    }

    void physicalCapacityIsTheNearestPowerOfTwo()
    {
        FileSystemInfo info;
        for (const auto &row : CAPACITIES) {
            s_fileSystems["/"] = fileSystem(7, row.fragmentSize, row.blocks);
            QCOMPARE(info.physicalCapacity(), row.gigabytes * 1000000000);
        }
    }

    void theMetaObjectIsAsDeclared()
    {
        QCOMPARE(methodsOf(FileSystemInfo::staticMetaObject),
                 "int error() ; QString errorString() ; qlonglong fileSystemCapacity(QString) path; "
                 "qlonglong availableFileSystemSpace(QString) path; ~1 qlonglong physicalCapacity() ; ");
    }
};

QTEST_APPLESS_MAIN(tst_FileSystemInfo)
#include "tst_FileSystemInfo.moc"
