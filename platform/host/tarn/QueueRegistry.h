// SPDX-License-Identifier: Apache-2.0
// Every thread's queue by its number, and the calling thread's own. The C functions of tarn.h find queues here.
#pragma once

#include "Queue.h"

#include <map>
#include <memory>
#include <mutex>

namespace kelp::platform {

class QueueRegistry
{
public:
    QueueRegistry();

    // The one of the process. It is never destroyed: threads may end after static objects have gone.
    static QueueRegistry &instance();

    // The calling thread's queue. Null, with errno, where it cannot be made, or when the thread is ending (EINVAL).
    Queue *own();

    // The calling thread's queue if it has one already.
    static Queue *existing();

    // Null: no such queue, or its thread has ended.
    std::shared_ptr<Queue> find(int id);

private:
    class Holder; // a thread's hold on its queue; takes it out of the registry when the thread ends

    std::shared_ptr<Queue> create();
    void remove(int id);
    void lockAll();
    void unlockAll();
    void restartInChild();

    std::mutex _mutex; // guards the rest
    std::map<int, std::shared_ptr<Queue>> _queues;
    int _lastId = 0;
};

} // namespace kelp::platform
