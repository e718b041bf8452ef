// SPDX-License-Identifier: Apache-2.0
// Reads one ordinary object. Made and kept by the store's descriptors.
#pragma once

#include "Object.h"
#include "ObjectText.h"
#include "Reader.h"

namespace kelp::device {

class ObjectReader : public Reader
{
public:
    // Due at once. texts and due have to outlive it.
    ObjectReader(DescriptorId id, std::shared_ptr<Object> object, bool delta, ObjectText &texts, Ring &due);
    ~ObjectReader() override;

    Store::Rendered render() override;
    void commit() override;
    void rest() override;

private:
    const std::shared_ptr<Object> _object;
    ObjectText &_texts;
    const bool _delta;
    Revision _seen = NEVER;     // has been read
    Revision _rendered = NEVER; // has been given
};

} // namespace kelp::device
