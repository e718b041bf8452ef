// SPDX-License-Identifier: Apache-2.0
// One reader for each argument of the catalogue, and the reasons why an argument is refused. Called for every
// command.
#include "EventArguments.h"

#include "ClientText.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>

namespace kelp::device {

namespace {

// Readers: false for a text that the argument cannot be.

bool readApp(EventArguments &arguments, const std::string &text)
{
    arguments.app = text;
    return isId(text);
}

bool readGroup(EventArguments &arguments, const std::string &text)
{
    arguments.group = text;
    return isId(text);
}

// "none" means no particular group where an application reads it.
bool readNewGroup(EventArguments &arguments, const std::string &text)
{
    arguments.newGroup = text;
    return isId(text) && text != "none";
}

bool readSeverity(EventArguments &arguments, const std::string &text)
{
    if (text.size() != 1 || text[0] < '0' || text[0] > '2') {
        return false;
    }
    arguments.severity = text[0] - '0';
    return true;
}

bool readAngle(EventArguments &arguments, const std::string &text)
{
    const auto angle =
        std::find_if(ANGLES.begin(), ANGLES.end(), [&](int one) { return std::to_string(one) == text; });
    arguments.angle = angle == ANGLES.end() ? 0 : *angle;
    return angle != ANGLES.end();
}

bool readSize(EventArguments &arguments, const std::string &text)
{
    const std::optional<ScreenSize> size = parseScreenSize(text);
    arguments.size = size.value_or(ScreenSize());
    return size.has_value();
}

bool readTheme(EventArguments &arguments, const std::string &text)
{
    arguments.theme = text;
    return isTheme(text);
}

struct Reader {
    std::string_view name;
    bool (*read)(EventArguments &, const std::string &);
};
constexpr std::array READERS = {
    Reader{"app", readApp},           Reader{"group", readGroup}, Reader{"id", readNewGroup},
    Reader{"severity", readSeverity}, Reader{"angle", readAngle}, Reader{"size", readSize},
    Reader{"theme", readTheme},
};

bool read(std::string_view name, const std::string &text, EventArguments &arguments)
{
    const auto reader = std::find_if(READERS.begin(), READERS.end(),
                                     [name](const Reader &candidate) { return candidate.name == name; });
    assert(reader != READERS.end()); // the catalogue has an argument that is not read here
    return reader->read(arguments, text);
}

const ArgumentSpec *findArgument(const EventSpec &event, const std::string &name)
{
    const auto spec = std::find_if(event.arguments.begin(), event.arguments.end(),
                                   [&name](const ArgumentSpec &candidate) { return candidate.name == name; });
    return spec == event.arguments.end() ? nullptr : &*spec;
}

std::size_t countOf(const ArgumentTexts &texts, std::string_view name)
{
    return static_cast<std::size_t>(
        std::count_if(texts.begin(), texts.end(), [name](const auto &text) { return text.first == name; }));
}

Outcome refuse(const EventSpec &event, const std::string &reason)
{
    return {EINVAL, std::string(event.name) + ' ' + reason};
}

Outcome refuseUnknown(const EventSpec &event, const std::string &name)
{
    std::string known;
    for (const ArgumentSpec &spec : event.arguments) {
        known += (known.empty() ? "" : ", ") + std::string(spec.name);
    }
    return refuse(event, "has no argument " + inQuotes(name) + ": it takes " + known);
}

Outcome checkPresence(const EventSpec &event, const ArgumentTexts &texts)
{
    for (const ArgumentSpec &spec : event.arguments) {
        const std::size_t count = countOf(texts, spec.name);
        const std::string name(spec.name);
        if (count > 1) {
            return refuse(event, "has the argument " + name + " more than once: give it once");
        }
        if (count == 0 && spec.required) {
            return refuse(event, "needs the argument " + name + ": " + std::string(spec.help));
        }
    }
    return {};
}

} // namespace

std::variant<EventArguments, Outcome> checkArguments(const EventSpec &event, const ArgumentTexts &texts)
{
    EventArguments arguments;
    for (const auto &[name, text] : texts) {
        const ArgumentSpec *spec = findArgument(event, name);
        if (!spec) {
            return refuseUnknown(event, name);
        }
        if (!read(spec->name, text, arguments)) {
            return refuse(event, "cannot have " + inQuotes(text) + " as " + name + ": give " +
                                     std::string(spec->help));
        }
    }
    if (Outcome refusal = checkPresence(event, texts); refusal.error != 0) {
        return refusal;
    }
    return arguments;
}

} // namespace kelp::device
