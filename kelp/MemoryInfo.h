// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_MEMORYINFO_H
#define KELP_MEMORYINFO_H

#include <kelp/Export.h>
#include <kelp/LowMemoryWarningLevel.h>

#include <QtCore/QObject>

namespace kelp {

class MemoryInfoPrivate;

/*!
 * The device's physical memory, this process's share of it, and the navigator's warnings that it runs short.
 *
 * \code
 * auto *memory = new kelp::MemoryInfo(this);
 * connect(memory, SIGNAL(lowMemory(int)), cache, SLOT(shrink(int)));
 * qDebug() << memory->availableDeviceMemory() << "of" << memory->totalDeviceMemory() << "bytes are free";
 * \endcode
 *
 * The object listens for warnings as long as it lives. Of several objects on one thread, each is warned.
 *
 * Threads: warnings arrive, and signals are emitted, on the thread that made the object, which needs an event loop; it
 * is also the one to destroy the object. Make it when the thread has its event dispatcher, on the main thread after the
 * application object: one made earlier keeps itself and every other receiver of platform events of that thread from
 * hearing anything. The queries may be called from any thread.
 */
class KELP_EXPORT MemoryInfo : public QObject
{
    Q_OBJECT

public:
    /*!
     * Asks the navigator for this process's events, on the calling thread.
     *
     * Without a device, or when the navigator refuses, no signal is ever emitted; the queries do not depend on it.
     */
    explicit MemoryInfo(QObject *parent = nullptr);
    ~MemoryInfo() override;

    /*!
     * The physical memory of the device in bytes, or the limit of the process's control group where that is less, as
     * they were when the process started. 0 when the device does not tell.
     */
    Q_INVOKABLE qint64 totalDeviceMemory() const;

    /*!
     * The physical memory that is free at this moment, in bytes.
     *
     * Returns -1 when the device does not tell, with a warning where its "/proc" is missing or not readable.
     */
    Q_INVOKABLE qint64 availableDeviceMemory() const;

    /*!
     * The memory that this process uses at this moment, in bytes.
     *
     * Returns -1 when the device does not tell, with a warning where its "/proc/<pid>/as" is missing or not readable.
     */
    Q_INVOKABLE qint64 memoryUsedByCurrentProcess() const;

Q_SIGNALS:
    /*!
     * Emitted once for each of the navigator's warnings, also when the level is the one before. A level that the
     * navigator does not define counts as LowPriority. The same with the number of the level follows.
     *
     * Each warning is written to the log, as critical, with the number of receivers of both signals.
     */
    void lowMemory(kelp::LowMemoryWarningLevel::Type level);

    /*!
     * The number of the level that lowMemory(kelp::LowMemoryWarningLevel::Type) has just carried. Not emitted where the
     * object was destroyed in answer to that.
     */
    void lowMemory(int level);

private:
    Q_DISABLE_COPY(MemoryInfo)
    friend class MemoryInfoPrivate;

    MemoryInfoPrivate *d;
};

} // namespace kelp

#endif
