// SPDX-License-Identifier: Apache-2.0
// See ObjectDoor.h.

#include "ObjectDoor.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/eventfd.h>

namespace kelp::device {

namespace {

Store::OpenFlags openFlags(const link::OpenObject &request)
{
    using link::OpenObject;
    Store::OpenFlags flags;
    flags.subscribe = request.flags & OpenObject::SUBSCRIBE;
    flags.publish = request.flags & OpenObject::PUBLISH;
    flags.create = request.flags & OpenObject::CREATE;
    flags.exclusive = request.flags & OpenObject::EXCLUSIVE;
    flags.truncate = request.flags & OpenObject::TRUNCATE;
    flags.mode = request.mode & 0777;
    return flags;
}

// Makes what the client and the device share of a descriptor: the device's ends, and what is passed on.
int makeShared(bool subscribes, bool publishes, std::size_t objectBytes, OpenDescriptor &descriptor,
               link::Passed &passed)
{
    WakePair pair;
    if (const int error = makeWakePair(publishes, pair)) {
        return error;
    }
    descriptor.wakeEnd = std::move(pair.device);
    passed.push_back(std::move(pair.client));
    if (!subscribes) {
        return 0;
    }
    link::SharedMemory memory;
    link::UniqueFd file;
    if (const int error = link::SharedMemory::create(link::SlotMemory::sizeFor(objectBytes), memory, file)) {
        return error;
    }
    descriptor.slot.emplace(std::move(memory));
    passed.push_back(std::move(file));
    return 0;
}

} // namespace

ObjectDoor::ObjectDoor(EventLoop &loop, Store &store, const DoorLimits &limits, Trace trace)
    : _loop(loop),
      _store(store),
      _limits(limits),
      _trace(std::move(trace))
{}

Outcome ObjectDoor::handle(ProcessId client, const ucred &who, const link::Body &body, link::Passed &passed)
{
    if (const auto *request = std::get_if<link::OpenObject>(&body)) {
        Outcome outcome = open(client, who, *request, passed);
        trace(who.pid, "open " + request->path, outcome.error);
        return outcome;
    }
    if (const auto *request = std::get_if<link::DescriptorCall>(&body)) {
        return call(client, *request);
    }
    if (const auto *request = std::get_if<link::PathCall>(&body)) {
        return call(who, *request);
    }
    return openCalls(client, passed);
}

Outcome ObjectDoor::open(ProcessId client, const ucred &who, const link::OpenObject &request,
                         link::Passed &passed)
{
    Client &opener = _clients[client];
    if (opener.descriptors >= _limits.descriptorsPerProcess) {
        return {EMFILE, {}};
    }
    const Store::OpenFlags flags = openFlags(request);
    OpenDescriptor descriptor;
    link::Passed shared;
    if (const int error = _store.open(request.path, flags, {who.uid, who.gid}, descriptor.id)) {
        return {error, {}};
    }
    const DescriptorId id = descriptor.id;
    descriptor.client = client;
    if (const int error =
            makeShared(flags.subscribe, flags.publish, _store.limits().objectBytes, descriptor, shared)) {
        _store.close(id);
        return {error, {}};
    }
    try {
        descriptor.watch = _loop.watch(descriptor.wakeEnd.get());
        descriptor.watch.onHangUp([this, id] { close(id); });
    } catch (const std::system_error &error) {
        _store.close(id);
        return {error.code().value(), {}};
    }
    _descriptors.emplace(id, std::move(descriptor));
    ++opener.descriptors;
    flush(); // the object's first text is there before the answer
    passed = std::move(shared);
    return {0, std::to_string(id) + ' ' + std::to_string(_store.limits().objectBytes) +
                   (_store.waits(id) ? " 1" : " 0")};
}

Outcome ObjectDoor::call(ProcessId client, const link::DescriptorCall &call)
{
    const auto found = _descriptors.find(call.descriptor);
    if (found == _descriptors.end() || found->second.client != client) {
        flush(); // its end may have hung up just before, and that has closed it
        return {EBADF, {}};
    }
    if (call.kind == link::DescriptorCall::Kind::Close) {
        close(call.descriptor);
        flush(); // what vanishes with it has vanished when the call returns
    } else if (found->second.slot && push(found->second)) {
        wake(found->second.wakeEnd);
    }
    return {};
}

Outcome ObjectDoor::call(const ucred &who, const link::PathCall &call)
{
    const Credentials credentials{who.uid, who.gid};
    switch (call.kind) {
    case link::PathCall::Kind::Unlink: {
        const int error = _store.unlink(call.path, credentials);
        trace(who.pid, "unlink " + call.path, error);
        flush();
        return {error, {}};
    }
    case link::PathCall::Kind::Access:
        return {_store.access(call.path, static_cast<int>(call.mode), credentials), {}};
    case link::PathCall::Kind::Size: {
        Store::Status status;
        const int error = _store.status(call.path, status);
        return {error, std::to_string(status.size)};
    }
    }
    return {EINVAL, {}};
}

Outcome ObjectDoor::openCalls(ProcessId client, link::Passed &passed)
{
    Client &caller = _clients[client];
    link::SharedMemory memory;
    link::UniqueFd file;
    const std::size_t size = link::CallPage::sizeFor(_store.limits().objectBytes);
    if (const int error = link::SharedMemory::create(size, memory, file)) {
        return {error, {}};
    }
    link::UniqueFd doorbell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    link::UniqueFd theirs(doorbell ? ::fcntl(doorbell.get(), F_DUPFD_CLOEXEC, 0) : -1);
    if (!theirs) {
        return {errno, {}};
    }
    try {
        caller.watch = _loop.watch(doorbell.get()); // in place of one that the client could not take
        caller.watch.onDoorbell([this, client] { onDoorbell(client); });
    } catch (const std::system_error &error) {
        return {error.code().value(), {}};
    }
    caller.doorbell = std::move(doorbell);
    caller.calls = link::CallPage(std::move(memory));
    passed.push_back(std::move(file));
    passed.push_back(std::move(theirs));
    return {};
}

void ObjectDoor::onDoorbell(ProcessId client)
{
    DescriptorId id = 0;
    if (!_clients[client].calls.takeAsked(id, _text)) {
        return;
    }
    const auto found = _descriptors.find(id);
    const bool isTheirs = found != _descriptors.end() && found->second.client == client;
    _answers.push_back({client, isTheirs ? _store.write(id, _text) : EBADF});
}

void ObjectDoor::flush()
{
    for (const DescriptorId due : _store.takeDue()) {
        const auto found = _descriptors.find(due);
        if (found != _descriptors.end() && found->second.slot && refresh(found->second)) {
            _toWake.push_back(&found->second);
        }
    }
    // All texts lie there before the first reader runs, which can be at once and in place of this process.
    for (const OpenDescriptor *descriptor : _toWake) {
        wake(descriptor->wakeEnd);
    }
    for (const Answer &answer : _answers) {
        if (const auto client = _clients.find(answer.client); client != _clients.end()) {
            client->second.calls.answer(answer.status, _toWake.size());
        }
    }
    _answers.clear();
    _toWake.clear();
}

// As push(); but a long text that nobody has read is made anew only when its reader comes for it: however many of them
// there are, and however slow, they cost a publisher next to nothing.
bool ObjectDoor::refresh(OpenDescriptor &descriptor)
{
    constexpr std::size_t SHORT_TEXT = 1024;
    if (descriptor.slot->lastSize() > SHORT_TEXT && descriptor.slot->makeStale()) {
        return false;
    }
    return push(descriptor);
}

// Puts into the slot what a read gives now, in the place of what nobody has read. Returns whether the reader is to be
// woken: it has read all that there was.
bool ObjectDoor::push(OpenDescriptor &descriptor)
{
    const bool isUnread = descriptor.slot->withhold();
    if (!isUnread) {
        _store.commit(descriptor.id);
    }
    const Store::Rendered news = _store.render(descriptor.id);
    if (isUnread || !news.text.empty()) {
        descriptor.slot->put(news.text, news.more);
    }
    return !isUnread && !news.text.empty();
}

void ObjectDoor::close(DescriptorId id)
{
    const auto node = _descriptors.extract(id);
    if (node.empty()) {
        return;
    }
    _store.close(id);
    if (const auto client = _clients.find(node.mapped().client); client != _clients.end()) {
        --client->second.descriptors;
    }
}

void ObjectDoor::dropClient(ProcessId client)
{
    std::vector<DescriptorId> theirs;
    for (const auto &[id, descriptor] : _descriptors) {
        if (descriptor.client == client) {
            theirs.push_back(id);
        }
    }
    for (const DescriptorId id : theirs) {
        close(id);
    }
    _clients.erase(client);
}

void ObjectDoor::trace(pid_t pid, const std::string &what, int error) const
{
    if (_trace) {
        _trace(pid, what + (error ? ": " + std::generic_category().message(error) : ": done"));
    }
}

} // namespace kelp::device
