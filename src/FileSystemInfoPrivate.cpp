// SPDX-License-Identifier: Apache-2.0
// See FileSystemInfoPrivate.h.

#include "FileSystemInfoPrivate.h"

#include <QtCore/QByteArray>
#include <QtCore/QtAlgorithms>

#include <cerrno>

namespace kelp {

namespace {

constexpr qint64 GIGABYTE = 1000000000;

// Wider fields than the platform has are cut to its 32 bits. The product cannot overflow, nor can half a gigabyte more.
quint64 bytesOf(unsigned long blockSize, fsblkcnt_t blocks)
{
    return quint64(quint32(blockSize)) * quint32(blocks);
}

// Unsigned, as the reserve may be any number.
qint64 lessReserve(quint64 bytes, qint64 reserve)
{
    return static_cast<qint64>(bytes - static_cast<quint64>(reserve));
}

// Blocks, as a decimal number; 0 where there is none.
qint64 reservedBlocks()
{
    bool isNumber = false;
    const qint64 blocks = qgetenv("DISK_ALIMIT").toLongLong(&isNumber);
    return isNumber ? blocks : 0;
}

// The power of two next to a number of gigabytes above 1: the upper one from half way between the two.
int nominalPower(quint64 gigabytes)
{
    const int highest = 63 - static_cast<int>(qCountLeadingZeroBits(gigabytes));
    const bool isUpperHalf = (gigabytes >> (highest - 1)) & 1;
    return isUpperHalf ? highest + 1 : highest;
}

} // namespace

FileSystemInfoPrivate::FileSystemInfoPrivate()
{
    cacheRootInfo();
}

void FileSystemInfoPrivate::cacheRootInfo()
{
    struct statvfs status;
    if (_rootInfoCached || ::statvfs("/", &status) != 0) {
        return; // no query: a failure is not the object's error
    }
    _rootInfoCached = true;
    _rootFileSystemId = static_cast<quint32>(status.f_fsid);
    _rootReserve = static_cast<qint64>(static_cast<quint64>(reservedBlocks()) * quint32(status.f_bsize));
}

// Tells whether the path could be examined, and keeps the error.
bool FileSystemInfoPrivate::examine(const char *path, struct statvfs *status)
{
    const int result = ::statvfs(path, status);
    _error = result == 0 ? 0 : errno;
    return result == 0;
}

qint64 FileSystemInfoPrivate::reservedFileSystemSpace(const struct statvfs &status) const
{
    const bool isRoot = _rootInfoCached && static_cast<quint32>(status.f_fsid) == _rootFileSystemId;
    return isRoot ? _rootReserve : 0;
}

qint64 FileSystemInfoPrivate::fileSystemCapacity(const QString &path)
{
    struct statvfs status;
    if (!examine(path.toUtf8().constData(), &status)) {
        return -1;
    }
    return lessReserve(bytesOf(status.f_frsize, status.f_blocks), reservedFileSystemSpace(status));
}

qint64 FileSystemInfoPrivate::availableFileSystemSpace(const QString &path)
{
    struct statvfs status;
    if (!examine(path.toUtf8().constData(), &status)) {
        return -1;
    }
    // Free (not available) blocks, and block (not fragment) size: an odd pair, kept on purpose.
    return lessReserve(bytesOf(status.f_bsize, status.f_bfree), reservedFileSystemSpace(status));
}

qint64 FileSystemInfoPrivate::physicalCapacity()
{
    struct statvfs status;
    if (!examine("/", &status)) {
        return -1;
    }
    const quint64 gigabytes = (bytesOf(status.f_frsize, status.f_blocks) + GIGABYTE / 2) / GIGABYTE;
    if (gigabytes <= 1) {
        return static_cast<qint64>(gigabytes) * GIGABYTE;
    }
    const int power = nominalPower(gigabytes);
    return power >= 32 ? 0 : (qint64(1) << power) * GIGABYTE;
}

} // namespace kelp
