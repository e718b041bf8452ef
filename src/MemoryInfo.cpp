// SPDX-License-Identifier: Apache-2.0
// See kelp/MemoryInfo.h. All the work is the private object's.

#include <kelp/MemoryInfo.h>

#include "MemoryInfoPrivate.h"

namespace kelp {

MemoryInfo::MemoryInfo(QObject *parent) : QObject(parent), d(nullptr)
{
    // For connections to other threads by the signal's text.
    qRegisterMetaType<LowMemoryWarningLevel::Type>("kelp::LowMemoryWarningLevel::Type");
    d = new MemoryInfoPrivate(this);
}

MemoryInfo::~MemoryInfo()
{
    delete d;
}

qint64 MemoryInfo::totalDeviceMemory() const
{
    return d->totalDeviceMemory();
}

qint64 MemoryInfo::availableDeviceMemory() const
{
    return d->availableDeviceMemory();
}

qint64 MemoryInfo::memoryUsedByCurrentProcess() const
{
    return d->memoryUsedByCurrentProcess();
}

} // namespace kelp
