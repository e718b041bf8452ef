// SPDX-License-Identifier: Apache-2.0
#include "AllReader.h"

#include "Server.h"

#include <algorithm>

namespace kelp::device {

namespace {

// The first object below a directory behind a path from there, in the order of their paths; the path itself
// need not exist any more.
Object *firstBehind(const Directory &directory, std::string_view path)
{
    const std::string_view part = path.substr(0, path.find('/'));
    const std::string_view rest = path.substr(std::min(part.size() + 1, path.size()));
    const Directory::Nodes &nodes = directory.nodes();
    for (auto node = nodes.lower_bound(part); node != nodes.end(); ++node) {
        const auto &[name, what] = *node;
        const bool isOnTheWay = name == part;
        if (what.directory) {
            if (Object *found = firstBehind(*what.directory, isOnTheWay ? rest : std::string_view())) {
                return found;
            }
        } else if (!isOnTheWay && what.object->server() == nullptr) {
            return what.object.get();
        }
    }
    return nullptr;
}

// In the order of the paths a directory's are together.
bool isBefore(std::string_view path, std::string_view other)
{
    const auto isLess = [](char a, char b) {
        const auto rank = [](char c) {
            return c == '/' ? 0U : static_cast<unsigned char>(c);
        };
        return rank(a) < rank(b);
    };
    return std::lexicographical_compare(path.begin(), path.end(), other.begin(), other.end(), isLess);
}

} // namespace

AllReader::AllReader(DescriptorId id, Directory &directory, bool delta, const Surroundings &store)
    : Reader(id),
      _directory(directory),
      _delta(delta),
      _store(store)
{
    _isPassing = next() != nullptr;
    _hasBegun = !_isPassing;
    if (_isPassing) {
        becomeDue();
    }
    _directory.addWatcher(*this);
}

AllReader::~AllReader()
{
    _directory.removeWatcher(*this);
    while (!_news.empty()) {
        erase(_news.begin());
    }
}

Object *AllReader::next() const
{
    return _isPassing && !_isGivenWhole ? firstBehind(_directory, _given) : nullptr;
}

std::string_view AllReader::pathOf(const Object &object) const
{
    return std::string_view(object.path()).substr(_directory.prefix().size());
}

// The first pass has still to come by the object: it will find it as it is then.
bool AllReader::isAhead(const Object &object) const
{
    return _isPassing && !_isGivenWhole && isBefore(_given, pathOf(object));
}

// The first pass has been by the object, or where it is now, with what has not been read.
bool AllReader::isGiven(const Object &object) const
{
    return _isPassing && !isAhead(object) && isBefore(_read, pathOf(object));
}

AllReader::Place AllReader::add(Place before, Object &object, Revision seen, bool isKnown)
{
    const Place news = _news.emplace(before);
    news->path = object.path();
    news->object = &object;
    news->seen = seen;
    news->changed = object.revision();
    news->isKnown = isKnown;
    _places.emplace(news->path, news);
    object.addBehind();
    return news;
}

AllReader::Place AllReader::find(const std::string &path)
{
    const auto found = _places.find(path);
    return found == _places.end() ? _news.end() : found->second;
}

void AllReader::erase(Place news)
{
    if (news->object != nullptr) {
        news->object->removeBehind();
        news->object->forgetWhatAllHaveRead();
    }
    _places.erase(news->path);
    _news.erase(news);
    if (_news.empty() && next() == nullptr) {
        leave();
    }
}

void AllReader::becomeDue()
{
    if (!isIn()) {
        _store.due.append(*this);
    }
}

void AllReader::created(Object &object)
{
    const Place news = find(object.path());
    if (news != _news.end()) {
        news->object = &object;
        news->changed = object.revision();
        object.addBehind();
    } else if (isGiven(object)) {
        add(_news.begin(), object, NEVER, false)->isFirst = true;
    } else if (!isAhead(object)) {
        add(_news.end(), object, _hasBegun ? object.birth() - 1 : NEVER, false);
    }
    becomeDue();
}

void AllReader::changed(Object &object, Revision before)
{
    const Place news = find(object.path());
    if (news != _news.end()) {
        news->changed = object.revision();
    } else if (isGiven(object)) {
        const Place first = add(_news.begin(), object, NEVER, false);
        first->isFirst = first->isRendered = first->wasThere = true;
    } else if (!isAhead(object)) {
        add(_news.end(), object, before, true);
    }
    becomeDue();
}

void AllReader::deleted(const Object &object)
{
    if (isAhead(object)) {
        return;
    }
    Place news = find(object.path());
    if (news == _news.end()) {
        const bool isFirst = isGiven(object);
        news = _news.emplace(isFirst ? _news.begin() : _news.end());
        news->path = object.path();
        news->seen = isFirst ? NEVER : object.revision();
        news->isKnown = !isFirst;
        news->isFirst = news->isRendered = news->wasThere = isFirst;
        _places.emplace(news->path, news);
    }
    news->object = nullptr;
    news->isPurged = object.isPurged();
    news->changed = object.revision();
    if (!news->isKnown && !news->isRendered) {
        erase(news);
    } else {
        becomeDue();
    }
}

bool AllReader::hasNews() const
{
    const auto isOne = [this](const News &news) {
        return !news.isRendered || isWorthTelling(news);
    };
    return next() != nullptr || std::any_of(_news.begin(), _news.end(), isOne);
}

// What was rendered has not been read: the next render begins anew. It may take the place of a text that lies
// there to be read. So if nothing of that is left, the next tells that it has gone, rather than nothing.
void AllReader::takeBack()
{
    _given = _read;
    _isGivenWhole = false;
    const bool hasOthers = hasNews();
    _isPassing = _isPassing && hasOthers;
    for (Place news = _news.begin(); news != _news.end() && (news->isRendered || news->isFirst);) {
        const Place next = std::next(news);
        const bool isCovered = news->isFirst || !isWorthTelling(*news);
        news->isRendered = news->isFirst = false;
        if (hasOthers && isCovered) {
            erase(news);
        }
        news = next;
    }
}

Store::Rendered AllReader::render()
{
    leave();
    takeBack();
    _text.clear();
    _renderedAt = _store.now;
    _isGivenWhole = renderFirst();
    const bool isAll = _isGivenWhole && renderNews();
    if (_text.size() > _store.mostBytes) {
        ObjectText::cut(_text, _store.mostBytes); // a single object
    }
    return {_text, !isAll};
}

// Whether all fitted; so do the next two.
bool AllReader::renderFirst()
{
    while (Object *const object = next()) {
        if (!append({.path = object->path(), .object = object})) {
            return false;
        }
        _given = pathOf(*object);
    }
    return true;
}

bool AllReader::renderNews()
{
    for (News &news : _news) {
        if (!append(news)) {
            return false;
        }
        news.isRendered = true;
        news.wasThere = news.object != nullptr;
    }
    return true;
}

bool AllReader::append(const News &news)
{
    const std::size_t before = _text.size();
    std::string_view flags = news.isPurged ? "-!" : "-";
    std::string_view lines = "\n";
    if (news.object != nullptr) {
        const std::string_view text = _store.texts.textFor(*news.object, news.seen, _delta);
        flags = text.substr(0, text.find('@'));
        lines = text.substr(text.find('\n'));
    }
    _text += flags;
    _text += '@';
    _text += std::string_view(news.path).substr(_directory.prefix().size());
    _text += lines;
    const bool fits = before == 0 || _text.size() <= _store.mostBytes;
    _text.resize(fits ? _text.size() : before);
    return fits;
}

void AllReader::commit()
{
    _hasBegun = _hasBegun || !_text.empty();
    _text.clear();
    _read = _given;
    for (Place news = _news.begin(); news != _news.end() && (news->isRendered || news->isFirst);) {
        settle(news++);
    }
    _isPassing = next() != nullptr;
    if (_isPassing || !_news.empty()) {
        becomeDue();
    }
}

// What has changed since it was rendered stays news, behind all others.
void AllReader::settle(Place news)
{
    if (news->changed <= _renderedAt) {
        erase(news);
        return;
    }
    news->isRendered = false;
    news->isFirst = false;
    news->isKnown = news->wasThere;
    news->seen = _renderedAt;
    if (isWorthTelling(*news)) {
        _news.splice(_news.end(), _news, news);
    } else {
        erase(news);
    }
}

} // namespace kelp::device
