// SPDX-License-Identifier: Apache-2.0
// The rotation of the screen: the hand-shake with the application in front, and every way in which it ends. Each
// test is a row of acts, with the errno and the events that follow from each.
#include "NavigatorFixture.h"

#include <sstream>

namespace kelp::device {

using link::RequestCode;

struct Act {
    std::string what; // as in "accept rotation-1"
    int error = 0;
    Lines lines = {};
};

class NavigatorRotation : public NavigatorFixture
{
protected:
    // "a", which is process 2, is in front of "b".
    NavigatorRotation()
    {
        launch("b");
        launch("a");
    }

    int take(const std::string &what)
    {
        std::string verb;
        std::string value;
        std::istringstream(what) >> verb >> value;
        const std::map<std::string, link::Request> requests = {
            {"accept", {RequestCode::OrientationCheckResponse, 1, value, {}}},
            {"refuse", {RequestCode::OrientationCheckResponse, 0, value, {}}},
            {"done", {RequestCode::DoneOrientation, 0, value, {}}},
            {"ask", {RequestCode::SetOrientation, std::atoi(value.c_str()), {}, {}}},
            {"lock", {RequestCode::RotationLock, std::atoi(value.c_str()), {}, {}}},
        };
        if (const auto found = requests.find(verb); found != requests.end()) {
            last = navigator.request(speaker, found->second);
            return last.error;
        }
        if (verb == "launch") {
            navigator.openedEvents(navigator.connected(300, value), 1);
            return 0;
        }
        if (verb == "pass") {
            step(std::chrono::milliseconds(std::atoi(value.c_str())));
            return 0;
        }
        const std::string argument = verb == "rotate" ? "angle" : verb == "screen" ? "size" : "app";
        return event(verb, {{argument, value}});
    }

    // Without what is told of windows.
    Lines sentAboutRotation()
    {
        Lines lines = sent();
        std::erase_if(lines, [](const std::string &line) {
            const auto has = [&line](const char *word) {
                return line.find(word) != std::string::npos;
            };
            return has(": app") || has(": window") || has("active ");
        });
        return lines;
    }

    void play(const std::vector<Act> &acts)
    {
        for (const Act &act : acts) {
            EXPECT_EQ(take(act.what), act.error) << act.what << ": " << last.text;
            EXPECT_EQ(sentAboutRotation(), act.lines) << act.what;
        }
    }

    // No rotation is under way: another can begin.
    void expectOver(int angle)
    {
        EXPECT_EQ(navigator.screen().angle, angle);
        for (const ApplicationState &application : navigator.applications()) {
            EXPECT_FALSE(application.rotation) << application.rotation->id;
        }
        EXPECT_EQ(navigator.nextDeadline(), std::nullopt);
    }

    ProcessId speaker = 2; // of the requests
};

TEST_F(NavigatorRotation, acceptedRotationTellsSizeAngleAndEnd)
{
    play({{"rotate 0"}, {"rotate 90", 0, {"2: check rotation-1 90"}}, {"pass 1999"}});
    EXPECT_EQ(state(1).rotation.value().isTurning, false);
    EXPECT_EQ(state(1).deadlines.at(0).name, "orientation-check");
    EXPECT_EQ(navigator.screen().angle, 0);
    play({{"accept rotation-1", 0, {"2: size rotation-1 1280 768", "2: turn rotation-1 90"}}});
    EXPECT_EQ(state(1).rotation.value().isTurning, true);
    EXPECT_EQ(state(1).deadlines.at(0).remaining, 5s);
    play({{"done rotation-1", 0, {"2: done 90"}}});
    expectOver(90);

    play({{"screen 720x800"},
          {"rotate 180", 0, {"2: check rotation-2 180"}},
          {"accept rotation-2", 0, {"2: size rotation-2 720 800", "2: turn rotation-2 180"}}});
}

TEST_F(NavigatorRotation, refusalAndMissingAnswersEndIt)
{
    play({{"rotate 270", 0, {"2: check rotation-1 270"}}, {"refuse rotation-1"}});
    expectOver(0);
    play({{"rotate 270", 0, {"2: check rotation-2 270"}}, {"pass 2000"}, {"accept rotation-2", EINVAL}});
    expectOver(0);
    EXPECT_EQ(port.traces.at(port.traces.size() - 2), "2000 102 a|orientation-check reached: no answer to "
                                                      "rotation-2 in time, the screen stays at 0 degrees");
    play({{"rotate 270", 0, {"2: check rotation-3 270"}},
          {"accept rotation-3", 0, {"2: size rotation-3 1280 768", "2: turn rotation-3 270"}},
          {"pass 5000", 0, {"2: done 270"}},
          {"done rotation-3", EINVAL}});
    expectOver(270);
}

TEST_F(NavigatorRotation, onlyTheRightAnswerAtTheRightStepAndOneAtATimeCounts)
{
    play({{"rotate 90", 0, {"2: check rotation-1 90"}},
          {"accept rotation-2", EINVAL},
          {"accept", EINVAL},
          {"done rotation-1", EINVAL},
          {"ask 180", EBUSY},
          {"rotate 180", EBUSY}});
    EXPECT_TRUE(lastSays("rotation-1 to 90 degrees is under way with a"));
    speaker = 1; // another application
    play({{"accept rotation-1", EINVAL}});
    speaker = 2;
    play({{"accept rotation-1", 0, {"2: size rotation-1 1280 768", "2: turn rotation-1 90"}},
          {"refuse rotation-1", EINVAL},
          {"done rotation-2", EINVAL},
          {"rotate 180", EBUSY},
          {"done rotation-1", 0, {"2: done 90"}},
          {"done rotation-1", EINVAL}});
    expectOver(90);
    EXPECT_EQ(take("ask 180"), 0);
    EXPECT_EQ(last.text, "rotation-2"); // refusals have used up no id
}

TEST_F(NavigatorRotation, applicationInFrontAsksForAnAngleAndLocksAgainstOthers)
{
    speaker = 1;
    play({{"lock 1"}, {"ask 90", EPERM}}); // it is not in front
    EXPECT_TRUE(lastSays("b is not in front"));
    speaker = 2;
    play({{"ask -90", EINVAL},
          {"ask 89", EINVAL},
          {"ask 360", EINVAL},
          {"rotate 90", 0, {"2: check rotation-1 90"}}, // the other's lock does not matter
          {"refuse rotation-1"},
          {"lock 1"},
          {"rotate 90", EPERM},
          {"ask 90", 0, {"2: size rotation-2 1280 768", "2: turn rotation-2 90"}},
          {"done rotation-2", 0, {"2: done 90"}},
          {"ask 90",
           0,
           {"2: size rotation-3 1280 768", "2: turn rotation-3 90"}}, // as it is: told all the same
          {"done rotation-3", 0, {"2: done 90"}},
          {"lock 0"},
          {"rotate 0", 0, {"2: check rotation-4 0"}}});
}

TEST_F(NavigatorRotation, applicationThatLeavesInTheMiddleEndsIt)
{
    for (const std::string how : {"thumbnail", "exit", "fullscreen", "gone"}) {
        for (const bool accepts : {false, true}) {
            const int before = navigator.screen().angle;
            const int wanted = 270 - before;
            EXPECT_EQ(take("rotate " + std::to_string(wanted)), 0) << last.text;
            take(accepts ? "accept " + last.text : "pass 1");
            sent();
            how == "gone" ? navigator.disconnected(speaker)
                          : (void)take(how + (how == "fullscreen" ? " b" : " a"));
            EXPECT_EQ(state(0).rotation.has_value(), accepts && how == "fullscreen"); // b follows the screen
            const Lines lines = sent();
            const std::string done = std::to_string(speaker) + ": done " + std::to_string(wanted);
            EXPECT_EQ(std::count(lines.begin(), lines.end(), done), accepts && how != "gone") << how;
            navigator.disconnected(speaker);
            step(5s);
            expectOver(accepts ? wanted : before);
            speaker = launch("a");
            step(5s); // it may have to follow
            sent();
        }
    }
    take("rotate 90");
    take("open-group a"); // it stays in front with another group
    EXPECT_TRUE(state(1).rotation);

    event("invisible", {{"group", "a/2"}});
    EXPECT_EQ(take("rotate 180"), 0);
    EXPECT_TRUE(lastSays("no application is in front"));
    expectOver(180);
}

TEST_F(NavigatorRotation, stepsWithoutRoomChangeNothing)
{
    port.rooms = {{2, 0}};
    play({{"rotate 90", EAGAIN}});
    port.rooms = {{2, 1}};
    play({{"ask 90", EAGAIN}, {"rotate 90", 0, {"2: check rotation-1 90"}}, {"accept rotation-1", EAGAIN}});
    EXPECT_EQ(navigator.screen().angle, 0);
    port.rooms = {{2, 2}};
    EXPECT_EQ(take("accept rotation-1"), 0);
    EXPECT_EQ(take("done rotation-1"), EAGAIN);
    EXPECT_TRUE(state(1).rotation);
    step(5s); // ends it, whoever reads
    expectOver(90);
    sent();

    port.rooms = {{1, 4}}; // three for its window
    play({{"fullscreen b"}, {"pass 1"}});
    port.rooms = {{1, 2}};
    play({{"pass 1", 0, {"1: size rotation-2 1280 768", "1: turn rotation-2 90"}}});
}

TEST_F(NavigatorRotation, whoComesToTheFrontAndTheScreenAgreeOnTheAngle)
{
    play({{"ask 90", 0, {"2: size rotation-1 1280 768", "2: turn rotation-1 90"}},
          {"fullscreen b", 0, {"2: done 90", "1: size rotation-2 1280 768", "1: turn rotation-2 90"}},
          {"rotate 180", EBUSY},
          {"pass 5000", 0, {"1: done 90"}},
          {"fullscreen a"}, // knows it
          {"launch c", 0, {"3: size rotation-3 1280 768", "3: turn rotation-3 90"}},
          {"fullscreen a", 0, {"3: done 90"}},
          {"lock 1"},
          {"invisible a"},
          {"rotate 0"}, // nobody is in front to be asked
          {"fullscreen a"}});
    expectOver(90);
    EXPECT_EQ(port.traces.at(port.traces.size() - 2),
              "5000 102 a|has locked the orientation: the screen turns to 90 degrees");

    play({{"lock 0"},
          {"invisible a"},
          {"rotate 0"},
          {"fullscreen a", 0, {"2: size rotation-4 768 1280", "2: turn rotation-4 0"}}});
    navigator.disconnected(2);
    expectOver(0);
    play({{"launch d"}}); // begins with that
}

TEST_F(NavigatorRotation, whoTakesNoEventsIsNotAskedAndLearnsTheAngleOnItsNextChannel)
{
    port.closed = {2};
    play({{"rotate 90"}});
    EXPECT_TRUE(lastSays("a takes no events: the screen is at 90 degrees"));
    EXPECT_EQ(port.traces.at(port.traces.size() - 2),
              "0 102 a|dropped orientation rotation-1 90: it takes no events");
    expectOver(90);

    port.closed = {};
    navigator.openedEvents(2, 7);
    EXPECT_EQ(sentAboutRotation(), (Lines{"channel 7: size rotation-1 1280 768",
                                          "channel 7: turn rotation-1 90", "channel 7: done 90"}));
    take("rotate 0");
    port.closed = {2};
    EXPECT_EQ(take("accept rotation-2"), 0);
    expectOver(0);

    port.closed = {};
    take("ask 180");
    navigator.openedEvents(2, 8);
    EXPECT_EQ(sent().back(), "channel 8: turn rotation-3 180"); // is not done yet
}

} // namespace kelp::device
