// SPDX-License-Identifier: Apache-2.0
// Which descriptors of this process are publish/subscribe objects.
#pragma once

#include "ObjectDescriptor.h"

#include <memory>
#include <mutex>
#include <unordered_map>

namespace kelp::platform {

class DescriptorTable
{
public:
    // The one of the process. In the child of a fork() all that is in it is disowned.
    static DescriptorTable &instance();

    // The object that is open under a number; null: none.
    std::shared_ptr<ObjectDescriptor> find(int fd);
    std::shared_ptr<ObjectDescriptor> take(int fd);
    void put(int fd, std::shared_ptr<ObjectDescriptor> object);
    // The system has given a number out anew: whatever stood under it has been closed behind our back.
    void forget(int fd);

private:
    std::mutex _mutex; // guards the rest; held while the process forks
    std::unordered_map<int, std::shared_ptr<ObjectDescriptor>> _objects;
};

} // namespace kelp::platform
