// SPDX-License-Identifier: Apache-2.0
// Any bytes as the messages by which a client opens, unlinks and asks about objects, as far as the store: a request is
// refused with an errno, or what it has opened is there and has a text.
#include "device/store/Store.h"
#include "platform/link/Message.h"

#include <cstdlib>

#include <unistd.h>

using namespace kelp;
using device::Store;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

constexpr device::Credentials WHO = {1000, 1000};

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void open(Store &store, const link::OpenObject &request)
{
    using link::OpenObject;
    Store::OpenFlags flags;
    flags.subscribe = request.flags & OpenObject::SUBSCRIBE;
    flags.publish = request.flags & OpenObject::PUBLISH;
    flags.create = request.flags & OpenObject::CREATE;
    flags.exclusive = request.flags & OpenObject::EXCLUSIVE;
    flags.truncate = request.flags & OpenObject::TRUNCATE;
    flags.mode = request.mode & 0777;
    device::DescriptorId id = 0;
    if (store.open(request.path, flags, WHO, id) != 0) {
        return;
    }
    Store::Status status;
    require(id != 0 && store.status(request.path.substr(0, request.path.find('?')), status) == 0);
    require(!status.isDirectory && (flags.subscribe || flags.publish));
    require(!store.render(id).text.empty() || !flags.subscribe ||
            request.path.find('?') != std::string::npos || request.path.ends_with("/.all"));
    store.close(id);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto message = link::decode({reinterpret_cast<const char *>(data), size});
    if (!message) {
        return 0;
    }
    Store store({.objectBytes = 64, .objects = 6, .queuedMessages = 2, .rememberedNames = 2});
    for (int again = 0; again < 2; ++again) { // when it is there already, too
        if (const auto *request = std::get_if<link::OpenObject>(&message->body)) {
            open(store, *request);
        } else if (const auto *call = std::get_if<link::PathCall>(&message->body)) {
            Store::Status status;
            (void)store.access(call->path, static_cast<int>(call->mode), WHO); // any answer will do
            require((store.unlink(call->path, WHO) == 0) <= (store.status(call->path, status) != 0));
        }
    }
    return 0;
}
