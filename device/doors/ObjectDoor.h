// SPDX-License-Identifier: Apache-2.0
// The way of client processes to the publish/subscribe store: opens objects for them, takes their writes, and keeps what
// each subscriber has still to read in a slot of shared memory, from which it reads without asking. The socket door
// brings the messages; writes come over a page of shared memory and a doorbell.
//
// What a turn of the loop brings is collected: flush() puts the news of all changes to each subscriber once, and only
// then answers the writers, so that whoever reads after a write has returned sees it.
#pragma once

#include "DoorLimits.h"
#include "OpenDescriptor.h"
#include "device/loop/EventLoop.h"
#include "device/navigator/Navigator.h"
#include "device/store/Store.h"
#include "platform/link/CallPage.h"
#include "platform/link/Message.h"
#include "platform/link/Socket.h"

#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include <sys/socket.h>

namespace kelp::device {

class ObjectDoor
{
public:
    using Trace = std::function<void(pid_t, const std::string &)>;

    ObjectDoor(EventLoop &loop, Store &store, const DoorLimits &limits, Trace trace);
    ObjectDoor(const ObjectDoor &) = delete;
    ObjectDoor &operator=(const ObjectDoor &) = delete;

    // Carries out OpenObject, DescriptorCall, PathCall or OpenCalls of a client, and sets what is to be passed with the
    // answer.
    Outcome handle(ProcessId client, const ucred &who, const link::Body &body, link::Passed &passed);

    // Closes all that a client has open.
    void dropClient(ProcessId client);

    // To be called before each wait of the loop, and after each change that somebody else has made in the store.
    void flush();

private:
    struct Client {
        std::size_t descriptors = 0;
        link::CallPage calls; // of its writes, once it has asked for the page
        link::UniqueFd doorbell;
        EventLoop::Watch watch; // after the doorbell: it must end first
    };
    struct Answer {
        ProcessId client = 0;
        int status = 0;
    };

    Outcome open(ProcessId client, const ucred &who, const link::OpenObject &request, link::Passed &passed);
    Outcome call(ProcessId client, const link::DescriptorCall &call);
    Outcome call(const ucred &who, const link::PathCall &call);
    Outcome openCalls(ProcessId client, link::Passed &passed);
    void onDoorbell(ProcessId client);
    bool push(OpenDescriptor &descriptor);
    bool refresh(OpenDescriptor &descriptor);
    void close(DescriptorId id);
    void trace(pid_t pid, const std::string &what, int error) const;

    EventLoop &_loop;
    Store &_store;
    DoorLimits _limits;
    Trace _trace;
    std::map<ProcessId, Client> _clients;
    std::unordered_map<DescriptorId, OpenDescriptor> _descriptors;
    std::vector<Answer> _answers;                // to the writes of this turn
    std::vector<const OpenDescriptor *> _toWake; // in this flush
    std::string _text;                           // of one write; kept for its room
};

} // namespace kelp::device
