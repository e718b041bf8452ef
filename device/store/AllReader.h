// SPDX-License-Identifier: Apache-2.0
// Reads every object below a directory, as its object ".all": first all that there are, in the order of their
// paths, of which it remembers how far it has come; then those that have changed since it read them, in the
// order in which they first did, so that busy objects keep none waiting. Server objects are not among them.
// Made and kept by the store's descriptors; Publisher tells it what happens below its directory.
#pragma once

#include "Directory.h"
#include "NameHash.h"
#include "ObjectText.h"
#include "Reader.h"

#include <list>
#include <unordered_map>

namespace kelp::device {

class AllReader : public Reader
{
public:
    struct Surroundings { // of the store; all have to outlive the reader
        ObjectText &texts;
        Ring &due;
        const Revision &now;
        std::size_t mostBytes;
    };

    // Begins with everything that is there.
    AllReader(DescriptorId id, Directory &directory, bool delta, const Surroundings &store);
    ~AllReader() override;

    void created(Object &object);
    // before: the object's revision before this change.
    void changed(Object &object, Revision before);
    void deleted(const Object &object);

    Store::Rendered render() override;
    void commit() override;

private:
    struct News {
        std::string path;         // from the root
        Object *object = nullptr; // null: it has been deleted
        Revision seen = NEVER;    // what the reader has read of the path
        Revision changed = NEVER; // when it last changed
        bool isKnown = false;     // the reader has read that it is there
        bool isFirst = false;     // the first pass has been by it, which has not been read
        bool isPurged = false;    // if deleted
        bool isRendered = false;  // the reader has been given it as it was at _renderedAt,
        bool wasThere = false;    // there or deleted
    };
    using Place = std::list<News>::iterator;

    Place add(Place before, Object &object, Revision seen, bool isKnown);
    Place find(const std::string &path);
    void erase(Place news);
    void becomeDue();
    // The next object of the first pass; null: there is none.
    Object *next() const;
    std::string_view pathOf(const Object &object) const;
    bool isAhead(const Object &object) const;
    bool isGiven(const Object &object) const;
    void takeBack();
    bool hasNews() const;
    bool renderFirst();
    bool renderNews();
    bool isWorthTelling(const News &news) const { return news.object != nullptr || news.isKnown; }
    bool append(const News &news);
    void settle(Place news);

    Directory &_directory;
    const bool _delta;
    const Surroundings _store;
    std::list<News> _news; // what is rendered stands in front, and what the first pass has been by
    std::unordered_map<std::string_view, Place, NameHash> _places; // by path
    // The first time over all objects, paths from _directory: the last that it has read, and has been given.
    bool _isPassing = true;
    std::string _read;
    std::string _given;
    bool _isGivenWhole = false; // what is created now comes after the pass, wherever it stands
    std::string _text;
    Revision _renderedAt = NEVER;
    bool _hasBegun; // it has read something, or there was nothing: what comes now is flagged as created
};

} // namespace kelp::device
