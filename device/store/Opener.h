// SPDX-License-Identifier: Apache-2.0
// Decides whether something may be opened as somebody asks, makes or empties the object if so, and makes the
// descriptor. Nothing has changed when it refuses. Called by Store.
#pragma once

#include "Descriptor.h"

namespace kelp::device {

class Opener
{
public:
    // publisher has to outlive it and its descriptors.
    Opener(Publisher &publisher, const StoreLimits &limits);

    // As Store::open(); the descriptor's reader bears the id.
    int open(std::string_view text, const Store::OpenFlags &flags, const Credentials &who, DescriptorId id,
             std::unique_ptr<Descriptor> &descriptor);

private:
    bool isConsistent(const Store::OpenFlags &flags) const;
    int admitToAll(const Store::OpenFlags &flags) const;
    int admit(const Tree::Place &place, const Store::OpenFlags &flags, const Credentials &who) const;
    int prepare(Tree::Place &place, const Store::OpenFlags &flags, const Credentials &who);

    Descriptor::Access accessOf(const Store::OpenFlags &flags) const;
    std::unique_ptr<Descriptor> openAll(Directory &directory, const Store::OpenFlags &flags, DescriptorId id);
    std::unique_ptr<Descriptor> openOrdinary(std::shared_ptr<Object> object, const Store::OpenFlags &flags,
                                             DescriptorId id);
    // As the object's server, or its server's client.
    std::unique_ptr<Descriptor> openConversation(std::shared_ptr<Object> object,
                                                 const Store::OpenFlags &flags, DescriptorId id);

    Publisher &_publisher;
    const StoreLimits _limits;
    ObjectPath _path; // that is being opened
};

} // namespace kelp::device
