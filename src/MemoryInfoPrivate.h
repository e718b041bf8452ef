// SPDX-License-Identifier: Apache-2.0
// What is behind MemoryInfo: the navigator's low-memory events, which become its signals, and the figures that the
// system page and the device's "/proc" give.
#pragma once

#include <kelp/AbstractTarnEventHandler.h>
#include <kelp/MemoryInfo.h>

namespace kelp {

class MemoryInfoPrivate : public AbstractTarnEventHandler
{
public:
    explicit MemoryInfoPrivate(MemoryInfo *q);
    ~MemoryInfoPrivate() override;

    bool event(tarn_event_t *event) override;

    // In bytes; keep nothing, and take no lock. -1: cannot be read.
    qint64 totalDeviceMemory() const;
    qint64 availableDeviceMemory() const;
    qint64 memoryUsedByCurrentProcess() const;

private:
    static LowMemoryWarningLevel::Type severityToWarningLevel(int severity);
    void emitLowMemorySignal(LowMemoryWarningLevel::Type level);

    MemoryInfo *q;
};

} // namespace kelp
