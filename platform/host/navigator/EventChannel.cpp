// SPDX-License-Identifier: Apache-2.0
// See EventChannel.h.

#include "EventChannel.h"

#include "platform/link/Limits.h"
#include "platform/link/Message.h"

#include <navigator/navigator.h>

#include <array>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace kelp::platform {

namespace {

// The event of the queue that carries a navigator event as its data.
Event makeEvent(link::Event &&content)
{
    auto data = std::make_unique<link::Event>(std::move(content));
    auto event = std::make_unique<tarn_event>();
    event->domain = navigator_get_domain();
    event->code = static_cast<unsigned int>(data->code);
    event->data = data.release();
    event->release = [](void *released) {
        std::default_delete<link::Event>()(static_cast<link::Event *>(released));
    };
    return event;
}

} // namespace

Event EventChannel::take(bool &ended)
{
    std::array<char, link::MAX_EVENT_BYTES> buffer;
    ssize_t length = 0;
    do {
        length = ::recv(_socket.get(), buffer.data(), buffer.size(), MSG_DONTWAIT | MSG_TRUNC);
    } while (length < 0 && errno == EINTR);
    if (length < 0 && errno == EAGAIN) {
        return {};
    }
    if (length > 0 && static_cast<std::size_t>(length) <= buffer.size()) {
        auto message = link::decode({buffer.data(), static_cast<std::size_t>(length)});
        if (auto *content = message ? std::get_if<link::Event>(&message->body) : nullptr) {
            return makeEvent(std::move(*content));
        }
    }
    ended = true; // the device has closed the channel, or does not speak our language
    return {};
}

bool EventChannel::hasEnded() const
{
    pollfd socket{_socket.get(), 0, 0};
    return ::poll(&socket, 1, 0) > 0; // POLLHUP or POLLERR, which need not be asked for
}

} // namespace kelp::platform
