// SPDX-License-Identifier: Apache-2.0
#include "Attributes.h"

#include "NameHash.h"

#include <algorithm>
#include <utility>

namespace kelp::device {

namespace {

constexpr std::size_t MOST_TO_LOOK_THROUGH = 16;
constexpr std::size_t HOLES_LEFT = 8; // holes and deleted names that may stay beside as many attributes again

std::uint32_t hashOf(std::string_view name)
{
    return static_cast<std::uint32_t>(NameHash()(name));
}

} // namespace

std::uint32_t Attributes::find(std::string_view name)
{
    // Publishers name their attributes in the same order each time.
    std::uint32_t slot = _next;
    if (slot >= _entries.size() || !_entries[slot].is(name)) {
        const auto isRight = [&](std::uint32_t candidate) {
            return _entries[candidate].is(name);
        };
        slot = 0;
        if (_entries.size() > MOST_TO_LOOK_THROUGH) {
            slot = _index.find(hashOf(name), isRight);
        } else {
            while (slot < _entries.size() && !isRight(slot)) {
                ++slot;
            }
        }
    }
    if (slot >= _entries.size()) {
        return NameIndex::NONE;
    }
    _next = slot + 1;
    return slot;
}

std::uint32_t Attributes::append(Attribute attribute)
{
    const auto slot = static_cast<std::uint32_t>(_entries.size());
    _entries.push_back(std::move(attribute));
    if (_entries.size() == MOST_TO_LOOK_THROUGH + 1) {
        _index.clear();
        for (std::uint32_t i = 0; i < slot; ++i) {
            _index.insert(hashOf(_entries[i].name()), i);
        }
    }
    if (_entries.size() > MOST_TO_LOOK_THROUGH) {
        _index.insert(hashOf(_entries[slot].name()), slot);
    }
    return slot;
}

// Where a step takes effect. What comes anew moves to the end now, even if the change is abandoned: where a
// deleted name stands does not matter.
std::uint32_t Attributes::slotFor(const Change::Step &step)
{
    const std::uint32_t slot = find(step.name);
    if (slot == NameIndex::NONE) {
        if (step.deletes) {
            return slot;
        }
        return append(Attribute(step.line, step.name.size()));
    }
    if (!_entries[slot].isDeleted() || _entries[slot].step != Attribute::NO_STEP) {
        return slot;
    }
    if (step.deletes) {
        return NameIndex::NONE;
    }
    Attribute moved = std::exchange(_entries[slot], Attribute());
    ++_holes;
    return append(std::move(moved));
}

std::size_t Attributes::prepare(const Steps &steps)
{
    _touched.clear();
    for (std::uint32_t i = 0; i < steps.size(); ++i) {
        const std::uint32_t slot = slotFor(steps[i]);
        if (slot == NameIndex::NONE) {
            continue;
        }
        if (_entries[slot].step == Attribute::NO_STEP) {
            _touched.push_back(slot);
        }
        _entries[slot].step = i;
    }
    std::size_t bytes = _bytes;
    for (const std::uint32_t slot : _touched) {
        const Attribute &attribute = _entries[slot];
        const Change::Step &step = steps[attribute.step];
        bytes += step.deletes ? 0 : step.line.size();
        bytes -= attribute.bytes();
    }
    return bytes;
}

void Attributes::abandon()
{
    for (const std::uint32_t slot : _touched) {
        _entries[slot].step = Attribute::NO_STEP;
        if (_entries[slot].isPrepared()) {
            discard(_entries[slot]);
        }
    }
    compact();
}

bool Attributes::apply(const Steps &steps, bool nopersist, Revision now)
{
    bool changed = false;
    for (const std::uint32_t slot : _touched) {
        Attribute &attribute = _entries[slot];
        const Change::Step &step = steps[attribute.step];
        attribute.step = Attribute::NO_STEP;
        changed |= applyTo(attribute, step, nopersist, now);
    }
    compact();
    return changed;
}

bool Attributes::applyTo(Attribute &attribute, const Change::Step &step, bool nopersist, Revision now)
{
    if (!step.deletes) {
        _deleted -= attribute.isDeleted() ? 1 : 0;
        _bytes += step.line.size() - attribute.bytes();
        attribute.set(step.line, nopersist, now);
        return true;
    }
    if (attribute.isLive()) {
        remove(attribute, false, now);
        return true;
    }
    if (attribute.isPrepared()) {
        discard(attribute);
    }
    return false;
}

void Attributes::remove(Attribute &attribute, bool purged, Revision now)
{
    _bytes -= attribute.bytes();
    ++_deleted;
    attribute.remove(purged, now);
}

void Attributes::discard(Attribute &attribute)
{
    _deleted -= attribute.isDeleted() ? 1 : 0;
    ++_holes;
    attribute = Attribute();
}

void Attributes::compact()
{
    if (2 * _holes <= _entries.size() + HOLES_LEFT) {
        return;
    }
    std::vector<Attribute> entries;
    entries.swap(_entries);
    _index.clear();
    _holes = 0;
    _next = 0;
    for (Attribute &attribute : entries) {
        if (!attribute.isFree()) {
            append(std::move(attribute));
        }
    }
}

bool Attributes::truncate(Revision now)
{
    if (_bytes == 0) {
        return false;
    }
    clear();
    _truncated = now;
    return true;
}

bool Attributes::purge(Revision now)
{
    bool changed = false;
    for (Attribute &attribute : _entries) {
        if (attribute.isLive() && attribute.isNopersist()) {
            remove(attribute, true, now);
            changed = true;
        }
    }
    return changed;
}

void Attributes::limitDeleted(std::size_t most)
{
    if (_deleted <= most) {
        return;
    }
    std::vector<Revision> revisions;
    for (const Attribute &attribute : _entries) {
        if (attribute.isDeleted()) {
            revisions.push_back(attribute.changed());
        }
    }
    // More than need be, so that it is done once in a while only.
    const auto last = revisions.begin() + static_cast<std::ptrdiff_t>(_deleted - most / 2 - 1);
    std::nth_element(revisions.begin(), last, revisions.end());
    _truncated = std::max(_truncated, *last);
    for (Attribute &attribute : _entries) {
        if (attribute.isDeleted() && attribute.changed() <= _truncated) {
            discard(attribute);
        }
    }
    compact();
}

void Attributes::forgetDeleted()
{
    if (2 * _deleted <= _entries.size() + HOLES_LEFT) {
        return; // not worth the while; they do no harm
    }
    for (Attribute &attribute : _entries) {
        if (attribute.isDeleted()) {
            discard(attribute);
        }
    }
    compact();
}

void Attributes::clear()
{
    _entries = {};
    _index = {};
    _touched = {};
    _next = 0;
    _bytes = _holes = _deleted = 0;
}

bool Attributes::hasLostSince(Revision seen) const
{
    const auto isLost = [&](const Attribute &attribute) {
        return attribute.isDeleted() && attribute.changed() > seen;
    };
    return isTruncatedFor(seen) || std::any_of(_entries.begin(), _entries.end(), isLost);
}

void Attributes::appendTo(std::string &text, Revision seen, bool delta) const
{
    const bool isWhole = !delta || seen == NEVER || isTruncatedFor(seen);
    for (const Attribute &attribute : _entries) {
        attribute.appendTo(text, seen, isWhole);
    }
}

} // namespace kelp::device
