// SPDX-License-Identifier: Apache-2.0
#include "ObjectText.h"

#include "Object.h"

namespace kelp::device {

namespace {

std::string_view nameFlags(const Object &object, Revision seen)
{
    if (object.isDeleted()) {
        return object.isPurged() ? "-!" : "-";
    }
    const bool isCreated = seen != NEVER && object.birth() > seen;
    const bool isTruncated = object.attributes().isTruncatedFor(seen);
    return isCreated ? "+" : isTruncated ? "#" : "";
}

void appendName(std::string &text, std::string_view flags, const Object &object)
{
    text += flags;
    text += '@';
    text += object.name();
    text += '\n';
}

std::size_t placeOf(const Object &object, Revision seen, bool delta, std::size_t places)
{
    return (object.birth() * 31 + seen * 7 + (delta ? 1 : 0)) % places;
}

} // namespace

std::string_view ObjectText::textFor(const Object &object, Revision seen, bool delta)
{
    delta = delta && seen != NEVER;
    Kept &kept = _kept[placeOf(object, seen, delta, _kept.size())];
    if (kept.birth != object.birth() || kept.revision != object.revision() || kept.seen != seen ||
        kept.delta != delta) {
        kept.birth = object.birth();
        kept.revision = object.revision();
        kept.seen = seen;
        kept.delta = delta;
        render(kept.text, object, seen, delta);
    }
    return kept.text;
}

void ObjectText::render(std::string &text, const Object &object, Revision seen, bool delta) const
{
    text.clear();
    appendName(text, nameFlags(object, seen), object);
    object.attributes().appendTo(text, seen, delta);
    if (text.size() <= _mostBytes) {
        return;
    }
    text.clear();
    appendName(text, "#", object);
    object.attributes().appendTo(text, NEVER, false);
    if (text.size() <= _mostBytes) {
        return;
    }
    // The object is as large as it may be. Only who would keep what has gone needs the flag more than the
    // last line.
    if (delta && object.attributes().hasLostSince(seen)) {
        cut(text, _mostBytes);
    } else {
        text.erase(0, 1);
    }
}

void ObjectText::cut(std::string &text, std::size_t mostBytes)
{
    text.insert(0, 1, '*');
    const std::size_t nameSize = text.find('\n') + 1;
    const std::size_t lastLine = text.substr(0, mostBytes).rfind('\n');
    text.resize(lastLine == std::string::npos ? nameSize : lastLine + 1);
}

} // namespace kelp::device
