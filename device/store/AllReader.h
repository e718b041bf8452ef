// SPDX-License-Identifier: Apache-2.0
// Reads every object below a directory, as its object ".all". It remembers which have changed since it last
// read them, in the order in which they first did, so that busy objects keep none waiting. Server objects are
// not among them. Made and kept by the store's descriptors; Publisher tells it what happens below its
// directory.
#pragma once

#include "Directory.h"
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
        bool isPurged = false;    // if deleted
        bool isRendered = false;  // the reader has been given it as it was at _renderedAt,
        bool wasThere = false;    // there or deleted
    };
    using Place = std::list<News>::iterator;

    void addAll(const Directory &directory);
    void add(Object &object, Revision seen, bool isKnown);
    Place find(const std::string &path);
    void erase(Place news);
    void becomeDue();
    void takeBack();
    bool isWorthTelling(const News &news) const { return news.object != nullptr || news.isKnown; }
    void append(const News &news);
    void settle(Place news);

    Directory &_directory;
    const bool _delta;
    const Surroundings _store;
    std::list<News> _news;                               // what is rendered stands in front
    std::unordered_map<std::string_view, Place> _places; // by path
    std::string _text;
    Revision _renderedAt = NEVER;
    bool _hasBegun; // it has read something, or there was nothing: what comes now is flagged as created
};

} // namespace kelp::device
