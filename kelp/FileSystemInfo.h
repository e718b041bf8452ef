// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_FILESYSTEMINFO_H
#define KELP_FILESYSTEMINFO_H

#include <kelp/Export.h>
#include <kelp/Revision.h>

#include <QtCore/QObject>
#include <QtCore/QString>

namespace kelp {

class FileSystemInfoPrivate;

/*!
 * How much the file system that holds a path can take, how much of it is free, and the device's nominal storage size.
 *
 * \code
 * kelp::FileSystemInfo storage;
 * const qint64 free = storage.availableFileSystemSpace(QDir::homePath());
 * if (free < 0) {
 *     qWarning() << "no space can be told:" << storage.errorString();
 * }
 * \endcode
 *
 * The environment variable DISK_ALIMIT may hold back space: a number of blocks, of the root file system's preferred
 * size, by which the capacity of that file system and its free space are smaller than they are. A negative number makes them larger; what
 * is no decimal number holds back nothing. The variable, and what file system is the root, are read when the object
 * is made; where the root cannot be examined at that time, the object never holds anything back.
 *
 * Threads: the queries of one object share its error, so use it from one thread at a time. Separate objects are
 * independent.
 */
class KELP_EXPORT FileSystemInfo : public QObject
{
    Q_OBJECT

public:
    explicit FileSystemInfo(QObject *parent = nullptr);
    ~FileSystemInfo() override;

    /*! The errno of the last query of this object if that failed, else 0. */
    Q_INVOKABLE int error() const;

    /*! The platform's text for error(), which it has for 0 as well; meant for texts in ASCII. */
    Q_INVOKABLE QString errorString() const;

    /*!
     * Size in bytes of the file system that holds \a path, less the reserve when that is the root.
     *
     * Only the low 32 bits of the number of blocks count. The result is negative where the reserve exceeds the size.
     * Returns -1 when the path cannot be examined; error() is then the errno of statvfs(), else 0.
     * \sa physicalCapacity()
     */
    Q_INVOKABLE qint64 fileSystemCapacity(const QString &path);

    /*!
     * Free space in bytes of the file system that holds \a path, less the reserve when that is the root.
     *
     * Counts the blocks free to the superuser, so it can exceed what this process may write, and takes them for blocks
     * of the preferred size, so where that differs from the unit of allocation it does not compare with the capacity.
     * Only the low 32 bits of the number of blocks count. The result is negative where the reserve exceeds the space.
     * Returns -1 when the path cannot be examined; error() is then the errno of statvfs(), else 0.
     */
    Q_INVOKABLE qint64 availableFileSystemSpace(const QString &path);

    /*!
     * The size in bytes under which the device's storage is sold: that of the root file system, rounded to gigabytes of
     * 1,000,000,000 bytes, and these to a power of two (3 to 4, 5 to 4, 6 to 8, 24 to 32). The reserve does not count, and
     * of the number of blocks only the low 32 bits do.
     *
     * 0 for less than half a gigabyte, and for more than the largest such size that can be told, 2^31 gigabytes.
     * Returns -1 when the root cannot be examined; error() is then the errno of statvfs(), else 0.
     */
    Q_INVOKABLE KELP_REVISION(1) qint64 physicalCapacity();

private:
    Q_DISABLE_COPY(FileSystemInfo)

    FileSystemInfoPrivate *d;
};

} // namespace kelp

#endif
