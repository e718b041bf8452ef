// SPDX-License-Identifier: Apache-2.0
// What is behind FileSystemInfo: the figures that statvfs() gives, the reserve of the root, and the last error.
#pragma once

#include <QtCore/QString>

#include <sys/statvfs.h>

namespace kelp {

class FileSystemInfoPrivate
{
public:
    FileSystemInfoPrivate(); // reads the root's status, once

    int error() const { return _error; }
    void setError(int error) { _error = error; }
    void resetError() { setError(0); }

    // In bytes. Each stores its errno or 0 as the error, and gives -1 for a failure.
    qint64 fileSystemCapacity(const QString &path);
    qint64 availableFileSystemSpace(const QString &path);
    qint64 physicalCapacity();

private:
    void cacheRootInfo();
    bool examine(const char *path, struct statvfs *status);
    qint64 reservedFileSystemSpace(const struct statvfs &status) const;

    qint32 _error = 0;             // errno of the last query, 0 after a success
    quint32 _rootFileSystemId = 0; // as the status of "/" has it
    qint64 _rootReserve = 0;       // bytes held back on the root file system
    bool _rootInfoCached = false;  // whether the two before are known
};

} // namespace kelp
