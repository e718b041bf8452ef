// SPDX-License-Identifier: Apache-2.0
// The C functions of navigator.h that ask for events and read them.

#include "EventChannel.h"
#include "platform/host/Result.h"
#include "platform/host/connection/DeviceConnection.h"
#include "platform/host/tarn/QueueRegistry.h"
#include "platform/link/Socket.h"

#include <navigator/navigator.h>

using namespace kelp;
using namespace kelp::platform;

namespace {

bool flagsAreKnown(int flags)
{
    return (flags & ~NAVIGATOR_EVENTS_EXTENDED) == 0;
}

// Gives the queue one end of a new channel and the device the other.
int openChannel(Queue &queue, int flags)
{
    link::UniqueFd ours;
    link::UniqueFd theirs;
    if (const int error = link::socketPair(ours, theirs)) {
        return error;
    }
    queue.setSource(std::make_unique<EventChannel>(std::move(ours)));
    DeviceConnection::Answer answer;
    const int passed[] = {theirs.get()};
    const int error = DeviceConnection::instance().ask(link::OpenEvents{flags}, answer, passed);
    if (error) {
        queue.dropSource();
    }
    return error;
}

// What the event carries, if it is the navigator's; null with errno otherwise.
const link::Event *contentOf(const tarn_event_t *event)
{
    const void *content = tarn_event_get_data(event, navigator_get_domain());
    if (!content) {
        errno = EINVAL;
    }
    return static_cast<const link::Event *>(content);
}

// A number of the event; -1, which also stands for a number that the event does not have, comes with errno.
int numberOf(const tarn_event_t *event, std::int32_t link::Event::*number)
{
    const link::Event *content = contentOf(event);
    if (!content || content->*number == -1) {
        errno = EINVAL;
        return TARN_FAILURE;
    }
    return content->*number;
}

const char *textOf(const tarn_event_t *event, std::string link::Event::*text)
{
    const link::Event *content = contentOf(event);
    return content ? (content->*text).c_str() : "";
}

} // namespace

int navigator_get_domain(void)
{
    static const int domain = tarn_register_domain();
    return domain;
}

int navigator_request_events(int flags)
{
    return resultOf([=] {
        Queue *queue = QueueRegistry::existing();
        if (!flagsAreKnown(flags) || !queue || !queue->isBegun()) {
            return EINVAL;
        }
        return queue->hasSource() ? 0 : openChannel(*queue, flags);
    });
}

int navigator_stop_events(int flags)
{
    return resultOf([=] {
        Queue *queue = QueueRegistry::existing();
        if (!flagsAreKnown(flags)) {
            return EINVAL;
        }
        if (queue) {
            queue->dropSource();
        }
        return 0;
    });
}

int navigator_event_get_window_state(const tarn_event_t *event)
{
    return numberOf(event, &link::Event::windowState);
}

const char *navigator_event_get_groupid(const tarn_event_t *event)
{
    return textOf(event, &link::Event::groupId);
}

int navigator_event_get_app_state(const tarn_event_t *event)
{
    return numberOf(event, &link::Event::appState);
}

const char *navigator_event_get_id(const tarn_event_t *event)
{
    return textOf(event, &link::Event::id);
}

int navigator_event_get_severity(const tarn_event_t *event)
{
    return numberOf(event, &link::Event::severity);
}

int navigator_event_get_orientation_angle(const tarn_event_t *event)
{
    return numberOf(event, &link::Event::angle);
}

int navigator_event_get_orientation_size_width(const tarn_event_t *event)
{
    return numberOf(event, &link::Event::width);
}

int navigator_event_get_orientation_size_height(const tarn_event_t *event)
{
    return numberOf(event, &link::Event::height);
}
