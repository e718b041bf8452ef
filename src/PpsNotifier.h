// SPDX-License-Identifier: Apache-2.0
// Watches the descriptor of an open PpsObject for its private object. Qt wants a notifier switched and deleted on its own
// thread alone; one that another thread has no more use for ends there by itself, wherever the object has gone.
#pragma once

#include <QtCore/QSocketNotifier>

#include <atomic>
#include <memory>

namespace kelp {

class PpsNotifier : public QSocketNotifier
{
public:
    // At first disabled, and without a parent.
    explicit PpsNotifier(int fd);
    ~PpsNotifier() override;

    // For any thread but its own: closes what is open under the descriptor now, and leaves the rest to the notifier's
    // thread. 0, or the errno.
    static int retire(std::unique_ptr<PpsNotifier> notifier);

private:
    Q_DISABLE_COPY(PpsNotifier)

    int fd() const { return static_cast<int>(socket()); }

    // The descriptor is the notifier's. Tells its thread of all that the other one has done before.
    std::atomic<bool> _isRetired{false};
};

} // namespace kelp
