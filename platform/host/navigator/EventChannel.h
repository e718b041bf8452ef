// SPDX-License-Identifier: Apache-2.0
// The navigator's events for one thread: the client's end of an event channel, as a source of the thread's queue.
#pragma once

#include "platform/host/tarn/EventSource.h"
#include "platform/link/UniqueFd.h"

namespace kelp::platform {

class EventChannel : public EventSource
{
public:
    // socket: this end of the pair whose other end the device gets.
    explicit EventChannel(link::UniqueFd socket) : _socket(std::move(socket)) {}

    int descriptor() const override { return _socket.get(); }
    Event take(bool &ended) override;
    bool hasEnded() const override;

private:
    link::UniqueFd _socket;
};

} // namespace kelp::platform
