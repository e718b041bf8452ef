// SPDX-License-Identifier: Apache-2.0
// See Verdict.h.

#include "Verdict.h"

#include "TextTable.h"

#include <cstdint>
#include <optional>

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

// A member of what may be no object; null: there is none.
const Json *find(const Json &json, const std::string &name)
{
    const auto found = json.find(name);
    return found == json.end() ? nullptr : &*found;
}

// An application's attributes with those of its main window group, and the screen's angle.
Json stateOf(const Json &application, const Objects &objects)
{
    Json state = Json::object();
    const Json *groups = find(application, "windowGroups");
    if (groups && groups->is_array() && !groups->empty() && groups->front().is_object()) {
        state = groups->front();
    }
    state.update(application);
    const auto screen = objects.find(SCREEN);
    if (const Json *angle = screen == objects.end() ? nullptr : find(screen->second, "angle")) {
        state["angle"] = *angle;
    }
    return state;
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
    return judgeValues(condition.values, stateOf(*found->second, objects));
}

// Nothing: there is no such number.
std::optional<std::int64_t> countIn(const Json *counts, const std::string &name)
{
    const Json *count = counts ? find(*counts, name) : nullptr;
    return count && count->is_number_integer() ? std::optional(count->get<std::int64_t>()) : std::nullopt;
}

Verdict judgeRequest(const Condition &condition, const Objects &objects)
{
    const auto requests = objects.find(REQUESTS);
    const Json *counts = requests == objects.end() ? nullptr : find(requests->second, condition.subject);
    const auto made = countIn(counts, "made");
    const auto refused = countIn(counts, "refused");
    if (!made || !refused) {
        return instead("the device counts no requests: it is of another release");
    }
    if ((condition.kind == Kind::Request ? *made : *refused) >= condition.count) {
        return held();
    }
    return instead("made " + std::to_string(*made) + " times, refused " + std::to_string(*refused) +
                   " times");
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
