// SPDX-License-Identifier: Apache-2.0
// See MemoryInfoPrivate.h.

#include "MemoryInfoPrivate.h"

#include "Messages.h"

#include <devicefs/devicefs.h>
#include <navigator/navigator.h>
#include <sys/syspage.h>
#include <tarn/tarn.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>

#include <cstring>

#include <unistd.h>

namespace kelp {

const QString PROC_DIR = QStringLiteral("/proc");

namespace {

// The size that the device's file system reports for a path. -1 where it reports none, after a warning that begins
// with a text of the caller's if the path is missing or not readable.
qint64 sizeOf(const QString &path, const char *warning)
{
    const QByteArray name = path.toUtf8();
    if (devicefs_access(name.constData(), F_OK) != 0) {
        qWarning() << warning << Quoted{path} << "does not exist.";
        return -1;
    }
    if (devicefs_access(name.constData(), R_OK) != 0) {
        qWarning() << warning << Quoted{path} << "not readable.";
        return -1;
    }
    return devicefs_size(name.constData());
}

} // namespace

MemoryInfoPrivate::MemoryInfoPrivate(MemoryInfo *q) : q(q)
{
    subscribe(navigator_get_domain()); // before there is a queue: the order is kept on purpose
    (void)tarn_initialize();           // without a queue or a navigator, no signal is ever emitted
    (void)navigator_request_events(0);
}

MemoryInfoPrivate::~MemoryInfoPrivate()
{
    tarn_shutdown();
}

bool MemoryInfoPrivate::event(tarn_event_t *event)
{
    if (tarn_event_get_code(event) != NAVIGATOR_LOW_MEMORY) {
        return false;
    }
    const int severity = navigator_event_get_severity(event);
    qWarning() << "MemoryInfoPrivate::event - Low memory" << severity;
    emitLowMemorySignal(severityToWarningLevel(severity));
    return true;
}

LowMemoryWarningLevel::Type MemoryInfoPrivate::severityToWarningLevel(int severity)
{
    // Unsigned, so that negative severities are unexpected as well. The others are the levels' own numbers.
    if (static_cast<unsigned>(severity) <= LowMemoryWarningLevel::HighPriority) {
        return static_cast<LowMemoryWarningLevel::Type>(severity);
    }
    qWarning() << "MemoryInfoPrivate::severityToWarningLevel() - Unexpected severity value (" << severity
               << ") treated as low priority";
    return LowMemoryWarningLevel::LowPriority;
}

void MemoryInfoPrivate::emitLowMemorySignal(LowMemoryWarningLevel::Type level)
{
    const int receivers = q->receivers(SIGNAL(lowMemory(kelp::LowMemoryWarningLevel::Type))) +
                          q->receivers(SIGNAL(lowMemory(int)));
    qCritical() << "Process" << QCoreApplication::applicationPid()
                << "dispatched low memory signal, priority =" << int(level)
                << "number of receivers =" << receivers;
    const QPointer<MemoryInfo> info(q); // a receiver may destroy it, and this object with it
    Q_EMIT info->lowMemory(level);
    if (info) {
        Q_EMIT info->lowMemory(int(level));
    }
}

qint64 MemoryInfoPrivate::totalDeviceMemory() const
{
    const auto *bytes = reinterpret_cast<const char *>(_syspage_ptr);
    const char *ranges = bytes + _syspage_ptr->address_space.offset;
    const char *names = bytes + _syspage_ptr->strings.offset;
    quint64 sum = 0;
    for (std::size_t at = 0; at + sizeof(syspage_address_range) <= _syspage_ptr->address_space.size;
         at += sizeof(syspage_address_range)) {
        syspage_address_range range;
        std::memcpy(&range, ranges + at, sizeof range); // the table may lie at any byte
        if (std::strcmp(names + range.name, "ram") == 0) {
            sum += range.end - range.start + 1;
        }
    }
    return static_cast<qint64>(sum);
}

qint64 MemoryInfoPrivate::availableDeviceMemory() const
{
    return sizeOf(PROC_DIR, "MemoryInfo::freeDeviceMemory() failed, path");
}

qint64 MemoryInfoPrivate::memoryUsedByCurrentProcess() const
{
    const QString addressSpace =
        PROC_DIR + QLatin1Char('/') + QString::number(::getpid()) + QStringLiteral("/as");
    return sizeOf(addressSpace, "MemoryInfo::currentProcessMemory() failed, path");
}

} // namespace kelp
