// SPDX-License-Identifier: Apache-2.0
// Commands of persons and tests: which arguments they take, whom they are for, and what a refusal says.
#include "NavigatorFixture.h"

#include "device/catalogue/Catalogue.h"

namespace kelp::device {

using NavigatorCommands = NavigatorFixture;

struct Refusal {
    std::string name;
    Arguments arguments;
    int error;
    std::string words; // in the reason
};

TEST_F(NavigatorCommands, refusalsNameTheArgumentAndWhatIsAllowed)
{
    launch("a");
    const Refusal refusals[] = {
        {"fullscren", {}, EINVAL, "\"fullscren\": choose one of fullscreen, thumbnail"},
        {"", {}, EINVAL, "no event \"\""},
        {"thumbnail", {{"severity", "1"}}, EINVAL, "no argument \"severity\": it takes app, group"},
        {"thumbnail", {{"app", "a"}, {"app", "a"}}, EINVAL, "argument app more than once"},
        {"thumbnail", {{"app", ""}}, EINVAL, "\"\" as app: give the application"},
        {"thumbnail", {{"group", "\n"}}, EINVAL, "\"\\n\" as group"},
        {"thumbnail", {{"app", "A"}}, ESRCH, "no application \"A\" runs: choose one of a"},
        {"thumbnail", {{"app", "a"}, {"group", "a/2"}}, ESRCH, "\"a/2\" is open in a: choose one of a/1"},
        {"thumbnail", {{"group", "a/2"}}, ESRCH, "choose one of a/1"},
        {"low-memory", {}, EINVAL, "needs the argument severity: 0 (enough again), 1 (low) or 2 (critical)"},
        {"low-memory", {{"severity", "3"}}, EINVAL, "\"3\" as severity: give 0 (enough again), 1 (low)"},
        {"low-memory", {{"severity", ""}}, EINVAL, "\"\" as severity"},
        {"low-memory", {{"severity", "-1"}}, EINVAL, "\"-1\" as severity"},
        {"low-memory", {{"severity", "1 "}}, EINVAL, "\"1 \" as severity"},
        {"low-memory", {{"severity", "1"}, {"app", "b"}}, ESRCH, "\"b\""},
        {"open-group", {{"id", ""}}, EINVAL, "\"\" as id: give"},
        {"open-group", {{"id", "none"}}, EINVAL, "\"none\" as id: give"},
        {"open-group", {{"id", "caf\xc3\xa9"}}, EINVAL, "as id: give"},
        {"open-group", {{"id", std::string(256, 'x')}}, EINVAL, "1 to 255 printable ASCII"},
        {"open-group", {{"id", "a/1"}}, EEXIST, "choose another id"},
        {"close-group", {}, EINVAL, "needs the argument group"},
        {"rotate", {}, EINVAL, "needs the argument angle: 0, 90, 180 or 270"},
        {"rotate", {{"angle", "45"}}, EINVAL, "\"45\" as angle: give 0, 90, 180 or 270"},
        {"rotate", {{"angle", "360"}}, EINVAL, "\"360\" as angle"},
        {"screen", {{"size", "768"}}, EINVAL, "\"768\" as size: give pixels when held upright"},
        {"screen", {{"size", "0x1280"}}, EINVAL, "as size"},
        {"screen", {{"size", "768x16385"}}, EINVAL, "as size"},
        {"screen", {{"size", "768x99999999999"}}, EINVAL, "as size"},
        {"screen", {{"size", "0768x1280"}}, EINVAL, "as size"},
        {"theme", {{"theme", "Bright"}}, EINVAL, "\"Bright\" as theme: give bright or dark"},
    };
    for (const Refusal &refusal : refusals) {
        EXPECT_EQ(event(refusal.name, refusal.arguments), refusal.error) << refusal.name;
        EXPECT_TRUE(lastSays(refusal.words));
    }
    EXPECT_EQ(sent(), Lines());
    EXPECT_EQ(event("open-group", {{"id", std::string(255, 'x')}}), 0);
}

TEST_F(NavigatorCommands, withoutANameTheOnlyApplicationOrTheOneWithTheGroupIsMeant)
{
    EXPECT_EQ(event("thumbnail"), ESRCH);
    EXPECT_TRUE(lastSays("start one with KELP_DEVICE set"));
    EXPECT_EQ(event("low-memory", {{"severity", "0"}}), ESRCH);
    launch("a");
    EXPECT_EQ(event("thumbnail"), 0);
    launch("b");
    sent();

    EXPECT_EQ(event("invisible"), EINVAL);
    EXPECT_TRUE(lastSays("several applications run: name one with --app: a, b"));
    EXPECT_EQ(event("invisible", {{"group", "c/1"}}), ESRCH);
    EXPECT_TRUE(lastSays("a/1, b/1"));
    EXPECT_EQ(event("invisible", {{"app", "b"}, {"group", "a/1"}}), ESRCH);
    EXPECT_EQ(sent(), Lines());
    EXPECT_EQ(event("invisible", {{"group", "a/1"}}), 0);
    EXPECT_EQ(event("low-memory", {{"severity", "0"}}), 0);
    EXPECT_EQ(event("low-memory", {{"severity", "1"}, {"app", "b"}}), 0);
    EXPECT_EQ(sent(), Lines({"1: window 2 a/1", "1: memory 0", "2: memory 0", "2: memory 1"}));
}

TEST_F(NavigatorCommands, everyEventOfTheCatalogueIsOfferedWithAllItsArguments)
{
    launch("a");
    const std::map<std::string, std::string> values = {
        {"severity", "1"}, {"app", "a"},          {"id", "x"},      {"group", "a/1"},
        {"angle", "90"},   {"size", "16384x720"}, {"theme", "dark"}};
    for (const EventSpec &spec : events()) {
        Arguments arguments;
        for (const ArgumentSpec &argument : spec.arguments) {
            const std::string name(argument.name);
            arguments.emplace_back(name, values.at(name));
        }
        const int error = event(std::string(spec.name), arguments);
        EXPECT_TRUE(error == 0 || error == EPERM) << spec.name << ": " << last.text;
    }
    EXPECT_EQ(screenSizeText(navigator.screen().properties.size), "16384x720");
    EXPECT_EQ(navigator.screen().properties.theme, "dark");
}

} // namespace kelp::device
