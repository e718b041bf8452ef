// SPDX-License-Identifier: Apache-2.0
// What a subscribed descriptor reads, whatever it has open: an object, every object below a directory, or
// messages. In the ring of due readers exactly while it has news that takeDue() has not named.
#pragma once

#include "Ring.h"
#include "Store.h"

namespace kelp::device {

class Reader : public Ring::Node
{
public:
    explicit Reader(DescriptorId id) : _id(id) {}
    virtual ~Reader() = default;

    DescriptorId id() const { return _id; }

    // As Store has them.
    virtual Store::Rendered render() = 0;
    virtual void commit() = 0;

    // Leaves the ring of due readers, to join it again at the next news.
    virtual void rest() { leave(); }

private:
    const DescriptorId _id;
};

} // namespace kelp::device
