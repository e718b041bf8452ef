// SPDX-License-Identifier: Apache-2.0
// See kelp/FileSystemInfo.h. All the work is the private object's.

#include <kelp/FileSystemInfo.h>

#include "FileSystemInfoPrivate.h"

#include <cstring>

namespace kelp {

FileSystemInfo::FileSystemInfo(QObject *parent) : QObject(parent), d(new FileSystemInfoPrivate) {}

FileSystemInfo::~FileSystemInfo()
{
    delete d;
}

int FileSystemInfo::error() const
{
    return d->error();
}

QString FileSystemInfo::errorString() const
{
    return QString::fromLatin1(std::strerror(d->error()));
}

qint64 FileSystemInfo::fileSystemCapacity(const QString &path)
{
    return d->fileSystemCapacity(path);
}

qint64 FileSystemInfo::availableFileSystemSpace(const QString &path)
{
    return d->availableFileSystemSpace(path);
}

qint64 FileSystemInfo::physicalCapacity()
{
    return d->physicalCapacity();
}

} // namespace kelp
