// SPDX-License-Identifier: Apache-2.0
// Holds a QMutex for a scope. Used for every lock of the library: the thread sanitizer cannot look into Qt, and learns
// here what the mutex orders.
#pragma once

#include <QtCore/QMutex>

#if defined(__SANITIZE_THREAD__)
#define KELP_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KELP_THREAD_SANITIZER
#endif
#endif

#if defined(KELP_THREAD_SANITIZER)
extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);
#endif

namespace kelp {

class Locker
{
public:
    explicit Locker(QBasicMutex *mutex) : _mutex(mutex)
    {
        _mutex->lock();
#if defined(KELP_THREAD_SANITIZER)
        __tsan_acquire(_mutex);
#endif
    }
    ~Locker()
    {
#if defined(KELP_THREAD_SANITIZER)
        __tsan_release(_mutex);
#endif
        _mutex->unlock();
    }

private:
    Q_DISABLE_COPY(Locker)

    QBasicMutex *_mutex; // the base, whose lock is inline also in Qt 5; none of the library's is recursive
};

} // namespace kelp
