// SPDX-License-Identifier: Apache-2.0
// See DescriptorTable.h.

#include "DescriptorTable.h"

#include "platform/host/NeverDestroyed.h"

#include <utility>

#include <pthread.h>

namespace kelp::platform {

DescriptorTable &DescriptorTable::instance()
{
    static NeverDestroyed<DescriptorTable> table;
    static const int registered =
        ::pthread_atfork([] { table->_mutex.lock(); }, [] { table->_mutex.unlock(); },
                         [] {
                             for (const auto &[fd, object] : table->_objects) {
                                 object->disown();
                             }
                             table->_mutex.unlock();
                         });
    (void)registered; // without memory for it, a fork() is the caller's risk
    return *table;
}

std::shared_ptr<ObjectDescriptor> DescriptorTable::find(int fd)
{
    const std::lock_guard lock(_mutex);
    const auto found = _objects.find(fd);
    return found == _objects.end() ? nullptr : found->second;
}

std::shared_ptr<ObjectDescriptor> DescriptorTable::take(int fd)
{
    const std::lock_guard lock(_mutex);
    const auto node = _objects.extract(fd);
    return node.empty() ? nullptr : node.mapped();
}

void DescriptorTable::put(int fd, std::shared_ptr<ObjectDescriptor> object)
{
    forget(fd);
    const std::lock_guard lock(_mutex);
    _objects[fd] = std::move(object);
}

void DescriptorTable::forget(int fd)
{
    if (const auto object = take(fd)) {
        (void)object->end().release(); // the number is another's
    }
}

} // namespace kelp::platform
