// SPDX-License-Identifier: Apache-2.0
// Scenarios as people write them: what each line says, and what is wrong with it.

#include "tools/kelp-device/Failure.h"
#include "tools/kelp-device/Scenario.h"

#include <gtest/gtest.h>

namespace kelp::tool {

namespace {

std::string shown(const CommandStep &step)
{
    std::string text = step.verb;
    for (const auto &[name, value] : step.arguments) {
        text += ' ' + name + '=' + value;
    }
    return text;
}

std::string shown(const ConditionStep &step)
{
    const Condition &condition = step.condition;
    std::string text = std::to_string(step.timeoutSeconds).substr(0, 4) + " s";
    for (const std::string &part :
         {condition.application, condition.subject, std::to_string(condition.count)}) {
        text += ", " + part;
    }
    for (const auto &[name, value] : condition.values) {
        text += ", " + name + '=' + value;
    }
    return text;
}

std::string shown(const SetStep &step)
{
    return step.path + '\n' + step.lines;
}

std::string shown(const StartStep &)
{
    return "start";
}

std::string shown(const EndStep &step)
{
    return std::to_string(step.exitCode) + " within " + std::to_string(step.timeoutSeconds).substr(0, 4) +
           " s";
}

std::string refusalOf(const std::string &text)
{
    try {
        (void)parseScenario("s", text);
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.exitCode(), EXIT_USAGE);
        return failure.what();
    }
    return "none";
}

} // namespace

TEST(Scenario, aLineSaysWhatTheCommandLineWouldSay)
{
    const std::pair<std::string, std::string> rows[] = {
        {"send thumbnail", "event name=thumbnail"},
        {"send low-memory --app=x 2", "event name=low-memory app=x severity=2"},
        {"send low-memory --severity 2", "event name=low-memory severity=2"},
        {"fail set-badge EPERM", "fail request=set-badge errno=1 times=0"},
        {"fail --times 3 set-badge 0", "fail request=set-badge errno=0 times=3"},
        {"expect active=true windowState=thumbnail", "0.00 s, , , 1, active=true, windowState=thumbnail"},
        {"wait active=true --timeout 0.5 --app a", "0.50 s, a, , 1, active=true"},
        {"wait gone", "10.0 s, , , 1"},
        {"wait refused set-badge --count 2", "10.0 s, , set-badge, 2"},
        {"wait pps /pps/a/ v=1 w=a=b", "10.0 s, , /a, 1, v=1, w=a=b"},
        {"expect no-pps a", "0.00 s, , /a, 1"},
        {"set /a v=1 'l=Main  cell # ''1''' j={\"k\":[1]}",
         "/a\nv:n:1\nl::Main  cell # '1'\nj:json:{\"k\":[1]}\n"},
        {"set\ta#b v='' # w=2\r", "/a#b\nv::\n"},
        {"start", "start"},
        {"ends 143 --timeout 1", "143 within 1.00 s"},
    };
    for (const auto &[line, meaning] : rows) {
        const Scenario scenario = parseScenario("s", line);
        ASSERT_EQ(scenario.steps.size(), 1U) << line;
        const auto text = std::visit([](const auto &what) { return shown(what); }, scenario.steps[0].what);
        EXPECT_EQ(text, meaning) << line;
    }
}

TEST(Scenario, whatIsNoStepIsRefusedWithItsLineAndWhatToDo)
{
    const std::pair<std::string, std::string> rows[] = {
        {"jump", "there is no step \"jump\": use one of send, wait"},
        {"send", "something is missing: send EVENT"},
        {"send jump", "there is no event \"jump\""},
        {"send low-memory", "something is missing: send low-memory SEVERITY [--app ID]"},
        {"send low-memory 1 2", "\"2\" is too much: send low-memory"},
        {"send rotate 45", "rotate cannot have \"45\" as angle: give "},
        {"send theme --theme drak", "theme cannot have \"drak\" as theme: give "},
        {"send thumbnail --speed 1", "there is no option \"--speed\""},
        {"send thumbnail --app", "--app needs a value"},
        {"send thumbnail --app a --app=b", "--app stands twice"},
        {"fail set-bag EPERM", "there is no request \"set-bag\""},
        {"fail set-badge EBAD", "\"EBAD\" is no errno"},
        {"fail set-badge EPERM --times 0", "\"0\" is no number for --times: give one from 1"},
        {"wait", "no condition: give KEY=VALUE, gone"},
        {"wait --app=x", "no condition: give KEY=VALUE, gone"},
        {"wait fullscreen", "there is no condition \"fullscreen\": use KEY=VALUE, gone"},
        {"wait size=1", "an application's state has no \"size\": use one of processState"},
        {"wait windowState=full", "windowState is never \"full\": use one of fullscreen"},
        {"wait rotation=90", "rotation is never \"90\": use one of none, checking, turning"},
        {"wait =1", "\"=1\" is no value to expect"},
        {"wait active=true --timeout nan", "\"nan\" is no time for --timeout: give seconds"},
        {"wait active=true --timeout 86401", "\"86401\" is no time"},
        {"wait active=true --count 2", "this condition takes no --count: it is KEY=VALUE... [--app ID]"},
        {"wait gone --count=3", "this condition takes no --count: it is gone [--app ID]"},
        {"wait gone now", "\"now\" is too much: gone [--app ID]"},
        {"wait request jump", "there is no request \"jump\": use one of close-window"},
        {"wait request", "something is missing: request NAME"},
        {"expect active=true --timeout 1", "this condition takes no --timeout: it is KEY"},
        {"expect pps /a b", "\"b\" is no value to expect"},
        {"expect pps /a?delta", "options are not for the command line"},
        {"set", "something is missing: set PATH"},
        {"set /a b", "\"b\" sets nothing"},
        {"set /a 'b", "a ' is open at the end"},
        {"start now", "\"now\" is too much: start"},
        {"ends 256", "\"256\" is no exit code"},
    };
    for (const auto &[line, sentence] : rows) {
        const std::string refusal = refusalOf("# nothing\n\n" + line + "\nends 0\n");
        EXPECT_EQ(refusal.find("s:3: " + sentence), 0U) << line << ": " << refusal;
    }
}

TEST(Scenario, everyLineThatIsWrongIsNamedAtOnce)
{
    const std::string refusal = refusalOf("start\njump\nstart\nends 0\nsend exit\n");

    EXPECT_NE(refusal.find("s:2: there is no step"), std::string::npos) << refusal;
    EXPECT_NE(refusal.find("\nkelp-device: s:3: the application has been started"), std::string::npos)
        << refusal;
    EXPECT_NE(refusal.find("\nkelp-device: s:5: nothing comes after"), std::string::npos) << refusal;
    EXPECT_EQ(refusal.find("s:4"), std::string::npos);
}

} // namespace kelp::tool
