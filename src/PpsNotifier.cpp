// SPDX-License-Identifier: Apache-2.0
// See PpsNotifier.h.

#include "PpsNotifier.h"

#include <devicefs/devicefs.h>

#include <cerrno>

namespace kelp {

PpsNotifier::PpsNotifier(int fd) : QSocketNotifier(fd, Read)
{
    setEnabled(false);
}

PpsNotifier::~PpsNotifier()
{
    if (_isRetired.load(std::memory_order_acquire)) {
        setEnabled(false);          // before the number can be anybody else's
        (void)devicefs_close(fd()); // what was open there has been closed before
    }
}

// The notifier's event loop goes on watching the number, which therefore stays taken.
int PpsNotifier::retire(std::unique_ptr<PpsNotifier> notifier)
{
    const int result = devicefs_detach(notifier->fd()) == 0 ? 0 : errno;
    notifier->disconnect();
    notifier->setParent(nullptr);
    notifier->_isRetired.store(true, std::memory_order_release);
    notifier.release()->deleteLater();
    return result;
}

} // namespace kelp
