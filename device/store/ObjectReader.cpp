// SPDX-License-Identifier: Apache-2.0
#include "ObjectReader.h"

namespace kelp::device {

ObjectReader::ObjectReader(DescriptorId id, std::shared_ptr<Object> object, bool delta, ObjectText &texts,
                           Ring &due)
    : Reader(id),
      _object(std::move(object)),
      _texts(texts),
      _delta(delta)
{
    _object->addReader();
    due.append(*this);
}

ObjectReader::~ObjectReader()
{
    leave(); // before the object may go, whose ring it may be in
    _object->removeReader(_seen);
}

Store::Rendered ObjectReader::render()
{
    rest();
    _rendered = _object->revision();
    if (_seen == _rendered) {
        return {};
    }
    return {_texts.textFor(*_object, _seen, _delta), false};
}

void ObjectReader::commit()
{
    if (_rendered > _seen) {
        _seen = _rendered;
        _object->hasRead(_seen);
    }
}

void ObjectReader::rest()
{
    _object->waiting().append(*this);
}

} // namespace kelp::device
