// SPDX-License-Identifier: Apache-2.0
#include "AllReader.h"

#include "Server.h"

namespace kelp::device {

AllReader::AllReader(DescriptorId id, Directory &directory, bool delta, const Surroundings &store)
    : Reader(id),
      _directory(directory),
      _delta(delta),
      _store(store)
{
    addAll(directory);
    _hasBegun = _news.empty();
    if (!_news.empty()) {
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

void AllReader::addAll(const Directory &directory)
{
    for (const auto &[name, node] : directory.nodes()) {
        if (node.directory) {
            addAll(*node.directory);
        } else if (node.object->server() == nullptr) {
            add(*node.object, NEVER, false);
        }
    }
}

void AllReader::add(Object &object, Revision seen, bool isKnown)
{
    const Place news = _news.emplace(_news.end());
    news->path = object.path();
    news->object = &object;
    news->seen = seen;
    news->changed = object.revision();
    news->isKnown = isKnown;
    _places.emplace(news->path, news);
    object.addBehind();
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
    if (_news.empty()) {
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
    if (news == _news.end()) {
        add(object, _hasBegun ? object.birth() - 1 : NEVER, false);
    } else {
        news->object = &object;
        news->changed = object.revision();
        object.addBehind();
    }
    becomeDue();
}

void AllReader::changed(Object &object, Revision before)
{
    const Place news = find(object.path());
    if (news == _news.end()) {
        add(object, before, true);
    } else {
        news->changed = object.revision();
    }
    becomeDue();
}

void AllReader::deleted(const Object &object)
{
    Place news = find(object.path());
    if (news == _news.end()) {
        news = _news.emplace(_news.end());
        news->path = object.path();
        news->seen = object.revision();
        news->isKnown = true;
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

// What was rendered has not been read: the next render begins anew.
void AllReader::takeBack()
{
    for (Place news = _news.begin(); news != _news.end() && news->isRendered;) {
        const Place next = std::next(news);
        news->isRendered = false;
        if (!isWorthTelling(*news)) {
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
    for (News &news : _news) {
        const std::size_t before = _text.size();
        append(news);
        if (before > 0 && _text.size() > _store.mostBytes) {
            _text.resize(before);
            return {_text, true};
        }
        news.isRendered = true;
        news.wasThere = news.object != nullptr;
    }
    if (_text.size() > _store.mostBytes) {
        ObjectText::cut(_text, _store.mostBytes); // a single object
    }
    return {_text, false};
}

void AllReader::append(const News &news)
{
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
}

void AllReader::commit()
{
    const Place end = _news.end();
    Place news = _news.begin();
    while (news != end && news->isRendered) {
        _hasBegun = true;
        const Place next = std::next(news);
        settle(news);
        news = next;
    }
    if (!_news.empty()) {
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
    news->isKnown = news->wasThere;
    news->seen = _renderedAt;
    if (isWorthTelling(*news)) {
        _news.splice(_news.end(), _news, news);
    } else {
        erase(news);
    }
}

} // namespace kelp::device
