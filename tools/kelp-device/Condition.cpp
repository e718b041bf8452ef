// SPDX-License-Identifier: Apache-2.0
// See Condition.h. A new condition is a row of FORMS and a case in Verdict.cpp; a new value of an application's state
// is a row of STATE_VALUES.

#include "Condition.h"

#include "Failure.h"
#include "PathArgument.h"
#include "device/catalogue/Catalogue.h"

#include <algorithm>
#include <array>
#include <span>

namespace kelp::tool {

namespace {

using Kind = Condition::Kind;

struct Form {
    std::string_view word;  // the condition begins with it; empty: with a value of the state
    std::string_view usage; // what stands behind it
    Kind kind;
    bool takesSubject;
    bool takesValues;
    std::string_view option; // that it takes; may be empty
    std::string_view help;
};

constexpr std::array FORMS = {
    Form{"", "KEY=VALUE... [--app ID]", Kind::State, false, true, "app",
         "the application's state has these values"},
    Form{"gone", "[--app ID]", Kind::Gone, false, false, "app",
         "the application has gone; without ID, all have"},
    Form{"request", "NAME [--count N]", Kind::Request, true, false, "count",
         "the request has been made, N times at least"},
    Form{"refused", "NAME [--count N]", Kind::Refused, true, false, "count",
         "the request has been refused, N times at least"},
    Form{"pps", "PATH [NAME=VALUE]...", Kind::Object, true, true, "",
         "there is such an object, with these values"},
    Form{"no-pps", "PATH", Kind::NoObject, true, false, "", "there is no such object"},
};

constexpr std::array<std::string_view, 3> PROCESS_STATES = {"foreground", "background", "stopping"};
constexpr std::array<std::string_view, 3> WINDOW_STATES = {"fullscreen", "thumbnail", "invisible"};
constexpr std::array<std::string_view, 2> BADGES = {"splat", "none"};
constexpr std::array<std::string_view, 4> ANGLES = {"0", "90", "180", "270"}; // of the screen
constexpr std::array<std::string_view, 3> ROTATIONS = {"none", "checking", "turning"};
constexpr std::array<std::string_view, 2> TRUTHS = {"true", "false"};

struct StateValue {
    std::string_view key;
    std::span<const std::string_view> values; // empty: any
};

constexpr std::array STATE_VALUES = {
    StateValue{"processState", PROCESS_STATES},
    StateValue{"windowState", WINDOW_STATES},
    StateValue{"active", TRUTHS},
    StateValue{"badge", BADGES},
    StateValue{"closePrompt", TRUTHS},
    StateValue{"closePromptShown", TRUTHS},
    StateValue{"orientationLocked", TRUTHS},
    StateValue{"swipeStart", TRUTHS},
    StateValue{"rotation", ROTATIONS},
    StateValue{"angle", ANGLES},
    StateValue{"pid", {}},
    StateValue{"title", {}},
    StateValue{"version", {}},
};

template <typename Texts, typename Text>
std::string list(const Texts &texts, Text text)
{
    std::string joined;
    for (const auto &one : texts) {
        joined += (joined.empty() ? "" : ", ") + std::string(text(one));
    }
    return joined;
}

[[noreturn]] void refuse(const std::string &sentence)
{
    throw Failure(EXIT_USAGE, sentence);
}

Condition::Value takeValue(const std::string &word)
{
    const std::size_t separator = word.find('=');
    if (separator == 0 || separator == std::string::npos) {
        refuse("\"" + word + "\" is no value to expect: give NAME=VALUE");
    }
    return {word.substr(0, separator), word.substr(separator + 1)};
}

void checkStateValue(const Condition::Value &value)
{
    const auto row = std::find_if(STATE_VALUES.begin(), STATE_VALUES.end(),
                                  [&](const StateValue &one) { return one.key == value.first; });
    if (row == STATE_VALUES.end()) {
        refuse("an application's state has no \"" + value.first + "\": use one of " +
               list(STATE_VALUES, [](const StateValue &one) { return one.key; }));
    }
    if (!row->values.empty() &&
        std::find(row->values.begin(), row->values.end(), value.second) == row->values.end()) {
        refuse(value.first + " is never \"" + value.second + "\": use one of " +
               list(row->values, [](std::string_view one) { return one; }));
    }
}

const Form &formOf(const Words &words)
{
    const bool isMissing = words.empty() || words.front().starts_with("--"); // options alone
    const std::string first = isMissing ? "" : words.front();
    const auto form =
        std::find_if(FORMS.begin() + 1, FORMS.end(), [&](const Form &one) { return one.word == first; });
    if (form != FORMS.end()) {
        return *form;
    }
    if (first.find('=') == std::string::npos) {
        refuse((first.empty() ? "no condition: give " : "there is no condition \"" + first + "\": use ") +
               list(FORMS, [](const Form &one) { return one.word.empty() ? "KEY=VALUE" : one.word; }));
    }
    return FORMS.front();
}

std::string usageOf(const Form &form)
{
    return std::string(form.word) + (form.word.empty() ? "" : " ") + std::string(form.usage);
}

void takeOptions(Words &words, const Form &form, Condition &condition)
{
    if (form.option == "app") {
        condition.application = takeOption(words, "app").value_or("");
    } else if (form.option == "count") {
        condition.count = countOf(takeOption(words, "count").value_or("1"), "count");
    }
    const auto left = std::find_if(words.begin(), words.end(),
                                   [](const std::string &word) { return word.starts_with("--"); });
    if (left != words.end()) {
        refuse("this condition takes no " + left->substr(0, left->find('=')) + ": it is " + usageOf(form));
    }
}

std::string subjectOf(const std::string &word, Kind kind)
{
    if (kind == Kind::Object || kind == Kind::NoObject) {
        return objectPath(word);
    }
    if (!device::findRequest(word)) {
        refuse("there is no request \"" + word + "\": use one of " +
               list(device::requests(), [](const auto &one) { return one.name; }));
    }
    return word;
}

} // namespace

std::string Condition::directory() const
{
    return kind == Kind::Object || kind == Kind::NoObject ? "" : "/services";
}

Condition parseCondition(Words words)
{
    const Form &form = formOf(words);
    Condition condition;
    condition.kind = form.kind;
    for (const std::string &word : words) {
        condition.text += (condition.text.empty() ? "" : " ") + word;
    }
    takeOptions(words, form, condition);
    auto word = words.begin() + (form.word.empty() ? 0 : 1);
    if (form.takesSubject) {
        if (word == words.end()) {
            refuse("something is missing: " + usageOf(form));
        }
        condition.subject = subjectOf(*word++, form.kind);
    }
    for (; form.takesValues && word != words.end(); ++word) {
        condition.values.push_back(takeValue(*word));
        if (form.kind == Kind::State) {
            checkStateValue(condition.values.back());
        }
    }
    if (word != words.end()) {
        refuse("\"" + *word + "\" is too much: " + usageOf(form));
    }
    return condition;
}

std::string conditionHelp()
{
    std::string help = "Conditions:";
    for (const Form &form : FORMS) {
        const std::string usage = usageOf(form);
        help += "\n  " + usage + std::string(28 - usage.size(), ' ') + std::string(form.help);
    }
    help += "\nKeys of an application's state, with its main window group's:";
    for (const StateValue &value : STATE_VALUES) {
        const std::string values = list(value.values, [](std::string_view one) { return one; });
        help += "\n  " + std::string(value.key) + (values.empty() ? "" : ": " + values);
    }
    return help;
}

} // namespace kelp::tool
