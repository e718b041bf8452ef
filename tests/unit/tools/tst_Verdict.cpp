// SPDX-License-Identifier: Apache-2.0
// Whether a condition holds, by what a device publishes.

#include "tools/kelp-device/Verdict.h"

#include <gtest/gtest.h>

namespace kelp::tool {

namespace {

const Objects ONE = {
    {"/services/deviceproperties", {{"angle", 90}}},
    {"/services/navigator-requests", {{"set-badge", {{"made", 2}, {"refused", 1}}}}},
    {"/services/navigator/a",
     {{"processState", "foreground"},
      {"closePrompt", false},
      {"rotation", "turning"},
      {"windowGroups", {{{"windowState", "thumbnail"}, {"active", false}}, {{"windowState", "invisible"}}}}}},
    {"/b",
     {{"n", 1.5},
      {"s", "1.5"},
      {"j", {{"k", {1, 2}}}},
      {"t", "\x1b[\xc2\x9b"
            "2J\xe2\x80\xae\x80\xf0\xd8\x9c\xc3\xa9"},
      {"l", std::string(300, 'x')},
      {"windowGroups", {{{"active", true}}}}}},
};

struct Row {
    Words condition;
    std::string seen; // empty: it holds
};

void expectVerdicts(const Objects &objects, const std::vector<Row> &rows)
{
    for (const auto &[words, seen] : rows) {
        const Condition condition = parseCondition(words);
        const Verdict verdict = judge(condition, objects);
        EXPECT_EQ(verdict.holds, seen.empty()) << condition.text;
        EXPECT_EQ(verdict.seen, seen) << condition.text;
    }
}

} // namespace

TEST(Verdict, tellsOfTheOnlyApplicationWithItsMainGroup)
{
    expectVerdicts(ONE,
                   {
                       {{"processState=foreground", "windowState=thumbnail", "active=false", "angle=90"}, ""},
                       {{"rotation=turning"}, ""},
                       {{"windowState=fullscreen", "closePrompt=false", "active=true"},
                        "windowState is thumbnail, active is false"},
                       {{"badge=splat"}, "there is no badge"},
                       {{"active=false", "--app", "a"}, ""},
                       {{"active=false", "--app", "b"}, "there is only a"},
                       {{"gone"}, "there is a"},
                       {{"gone", "--app=b"}, ""},
                   });
}

TEST(Verdict, asksWhichApplicationIsMeantAndMissesTheOneThatIsNotThere)
{
    Objects two = ONE;
    two["/services/navigator/c"] = {{"closePrompt", true}};

    expectVerdicts(two,
                   {
                       {{"closePrompt=true"}, "several applications run, say which one with --app: a, c"},
                       {{"closePrompt=true", "--app", "c"}, ""},
                       {{"gone"}, "there is a, c"},
                   });
    expectVerdicts({},
                   {
                       {{"closePrompt=true"}, "no application runs"},
                       {{"gone"}, ""},
                       {{"request", "set-badge"}, "the device counts no requests: it is of another release"},
                   });
}

TEST(Verdict, countsRequestsAndComparesValues)
{
    expectVerdicts(ONE, {
                            {{"request", "set-badge", "--count", "2"}, ""},
                            {{"request", "set-badge", "--count", "3"}, "made 2 times, refused 1 times"},
                            {{"refused", "set-badge"}, ""},
                            {{"refused", "set-badge", "--count=2"}, "made 2 times, refused 1 times"},
                            {{"pps", "/b"}, ""},
                            {{"pps", "/b", "n=1.50", "s=1.5", "j={\"k\": [1,2]}"}, ""},
                            {{"pps", "/b", "s=1.50", "n=x", "x="}, "s is 1.5, n is 1.5, there is no x"},
                            {{"pps", "/b", "t="}, "t is \ufffd[\ufffd2J\ufffd\ufffd\ufffd\ufffd\u00e9"},
                            {{"pps", "/b", "l="}, "l is " + std::string(300, 'x')},
                            {{"pps", "/b", "active=true"}, "there is no active"},
                            {{"pps", "/c"}, "there is no object /c"},
                            {{"no-pps", "/c"}, ""},
                            {{"no-pps", "/b"}, "there is /b"},
                        });
}

TEST(Verdict, takesAnyTypesThatAnObjectMayHave)
{
    const std::string noCounts = "the device counts no requests: it is of another release";
    expectVerdicts({{"/services/deviceproperties", {{"width", 1}}},
                    {"/services/navigator-requests", {{"set-badge", 5}, {"close-window", {{"made", "x"}}}}},
                    {"/services/navigator/a", {{"processState", 5}, {"windowGroups", {5}}}}},
                   {
                       {{"processState=foreground"}, "processState is 5"},
                       {{"active=true", "angle=0"}, "there is no active, there is no angle"},
                       {{"request", "set-badge"}, noCounts},
                       {{"refused", "close-window"}, noCounts},
                   });
}

} // namespace kelp::tool
