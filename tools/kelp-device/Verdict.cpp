// SPDX-License-Identifier: Apache-2.0
// See Verdict.h.

#include "Verdict.h"

#include "TextTable.h"

namespace kelp::tool {

namespace {

using Json = nlohmann::ordered_json;
using Kind = Condition::Kind;

constexpr std::string_view APPLICATIONS = "/services/navigator/";
constexpr char SCREEN[] = "/services/deviceproperties";
constexpr char REQUESTS[] = "/services/navigator-requests";

Verdict held()
{
    return {true, {}};
}

Verdict instead(const std::string &seen)
{
    return {false, printable(seen)};
}

std::string shown(const Json &value)
{
    return value.is_string() ? value.get<std::string>()
                             : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// A string as it is; any other value as it is written in JSON.
bool isEqual(const Json &value, const std::string &text)
{
    return value.is_string() ? value.get<std::string>() == text : value == Json::parse(text, nullptr, false);
}

// An attribute; or, of an application, a value of its main window group. Null: there is none.
const Json *find(const Json &attributes, const std::string &name)
{
    if (const auto found = attributes.find(name); found != attributes.end()) {
        return &*found;
    }
    const auto groups = attributes.find("windowGroups");
    if (groups == attributes.end() || !groups->is_array() || groups->empty()) {
        return nullptr;
    }
    const auto found = groups->front().find(name);
    return found == groups->front().end() ? nullptr : &*found;
}

Verdict judgeValues(const std::vector<Condition::Value> &values, const Json &attributes)
{
    std::string seen;
    for (const auto &[name, wanted] : values) {
        const Json *value = find(attributes, name);
        if (!value || !isEqual(*value, wanted)) {
            seen +=
                (seen.empty() ? "" : ", ") + (value ? name + " is " + shown(*value) : "there is no " + name);
        }
    }
    return seen.empty() ? held() : instead(seen);
}

std::map<std::string, const Json *> applicationsIn(const Objects &objects)
{
    std::map<std::string, const Json *> applications;
    for (const auto &[path, attributes] : objects) {
        if (path.starts_with(APPLICATIONS)) {
            applications.emplace(path.substr(APPLICATIONS.size()), &attributes);
        }
    }
    return applications;
}

Verdict judgeApplication(const Condition &condition, const Objects &objects)
{
    const auto applications = applicationsIn(objects);
    std::string ids;
    for (const auto &[id, attributes] : applications) {
        ids += (ids.empty() ? "" : ", ") + id;
    }
    const auto found =
        condition.application.empty() ? applications.begin() : applications.find(condition.application);
    const bool isThere = found != applications.end();
    if (condition.kind == Kind::Gone) {
        return isThere ? instead("there is " + (condition.application.empty() ? ids : condition.application))
                       : held();
    }
    if (!isThere) {
        return instead(ids.empty() ? "no application runs" : "there is only " + ids);
    }
    if (condition.application.empty() && applications.size() > 1) {
        return instead("several applications run, say which one with --app: " + ids);
    }
    Json state = *found->second;
    if (const auto screen = objects.find(SCREEN); screen != objects.end()) {
        state["angle"] = screen->second.value("angle", Json());
    }
    return judgeValues(condition.values, state);
}

Verdict judgeRequest(const Condition &condition, const Objects &objects)
{
    const auto requests = objects.find(REQUESTS);
    if (requests == objects.end() || !requests->second.contains(condition.subject)) {
        return instead("the device counts no requests: it is of another release");
    }
    const Json &counts = requests->second.at(condition.subject);
    const auto made = counts.value("made", 0U);
    const auto refused = counts.value("refused", 0U);
    if ((condition.kind == Kind::Request ? made : refused) >= condition.count) {
        return held();
    }
    return instead("made " + std::to_string(made) + " times, refused " + std::to_string(refused) + " times");
}

Verdict judgeObject(const Condition &condition, const Objects &objects)
{
    const auto object = objects.find(condition.subject);
    if (condition.kind == Kind::NoObject) {
        return object == objects.end() ? held() : instead("there is " + condition.subject);
    }
    return object == objects.end() ? instead("there is no object " + condition.subject)
                                   : judgeValues(condition.values, object->second);
}

} // namespace

Verdict judge(const Condition &condition, const Objects &objects)
{
    switch (condition.kind) {
    case Kind::State:
    case Kind::Gone:
        return judgeApplication(condition, objects);
    case Kind::Request:
    case Kind::Refused:
        return judgeRequest(condition, objects);
    default:
        return judgeObject(condition, objects);
    }
}

} // namespace kelp::tool
