// SPDX-License-Identifier: Apache-2.0
// See ObjectView.h.

#include "ObjectView.h"

#include "ObjectJson.h"

#include <algorithm>

#include <fcntl.h>

namespace kelp::tool {

ObjectView::ObjectView(std::string directory)
    : _directory(std::move(directory)),
      _all(_directory + "/.all", O_RDONLY)
{}

const Objects &ObjectView::read()
{
    ++_round;
    // One read need not tell all. Busy objects come again before an idle moment does: then all have been told.
    while (takeIn(_all.read())) {
    }
    return _objects;
}

// Whether there was something, and nothing that this round has had before.
bool ObjectView::takeIn(const std::string &text)
{
    bool isNew = !text.empty();
    for (const std::string &line : changesAsJson(text)) {
        auto change = nlohmann::ordered_json::parse(line);
        const std::string path = _directory + '/' + change.at("name").get<std::string>().substr(1);
        const auto &flags = change.at("flags");
        if (std::find(flags.begin(), flags.end(), "deleted") != flags.end()) {
            _objects.erase(path);
        } else {
            _objects[path] = std::move(change.at("attributes"));
        }
        isNew = isNew && std::exchange(_rounds[path], _round) != _round;
    }
    return isNew;
}

Verdict awaitCondition(const Condition &condition, std::chrono::duration<double> timeout)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::ceil<std::chrono::milliseconds>(timeout);
    ObjectView view(condition.directory());
    for (;;) {
        Verdict verdict = judge(condition, view.read());
        // Steady news would be there again however late it is.
        const bool isLate = std::chrono::steady_clock::now() >= end;
        if (verdict.holds || isLate || !view.awaitNews(end)) {
            return verdict;
        }
    }
}

} // namespace kelp::tool
