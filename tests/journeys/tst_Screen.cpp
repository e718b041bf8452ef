// SPDX-License-Identifier: Apache-2.0
// A device's screen: of which size and theme it is, how it is turned, and what the application in front wants of it,
// as a person causes and sees it, and as other programs do in publish/subscribe objects.

#include "Journey.h"

#include <navigator/navigator.h>

#include <csignal>

namespace kelp::test {

class Screen : public Journey
{
protected:
    // Of the object that all applications choose their assets by.
    static std::string property(const std::string &name)
    {
        return held({"pps", "get", "/services/deviceproperties", name});
    }
    static void expectIn(const std::string &text, const std::string &words)
    {
        EXPECT_NE(text.find(words), std::string::npos) << text;
    }
};

TEST_F(Screen, SizeAndThemeAreAsGivenAndChangeWhileTheDeviceRuns)
{
    held({"start", "--screen", "720x800", "--theme", "dark"});
    EXPECT_EQ(property("screen_res"), "720x800\n");
    held({"event", "screen", "16384x1"});
    held({"event", "theme", "bright"});
    EXPECT_EQ(property("defaultTheme"), "bright\n");
    expectIn(held({"event", "rotate", "180"}), "no application is in front");
    EXPECT_EQ(property("angle"), "180\n");
    expectIn(held({"state"}), "Screen 16384x1, bright, at 180 degrees.\n");

    const Result run =
        Command::run(kelpDevice({"run", "--screen=1x2", "--theme=dark", "--", KELP_DEVICE_PROGRAM, "pps",
                                 "get", "/services/deviceproperties"}));
    expectIn(run.output, "screen_res::1x2\ndefaultTheme::dark\n");
}

TEST_F(Screen, RotationAndWishesShowInTheStateAndInTheApplicationsObject)
{
    held({"start"});
    DoorClient client(home(), link::Role::Application);
    const link::UniqueFd events = client.openEvents();
    const auto ask = [&client](link::RequestCode code, int number = 0, const std::string &id = {}) {
        return client.ask(link::Request{code, number, id, {}}).status;
    };
    const std::string object = "/services/navigator/tst_kelp-device";

    EXPECT_EQ(ask(link::RequestCode::SetBadge), 0);
    EXPECT_EQ(ask(link::RequestCode::RequestSwipeStart), 0);
    EXPECT_EQ(held({"event", "rotate", "90"}), "rotation-1\n");
    const link::Event check = awaitEvent(events.get(), NAVIGATOR_ORIENTATION_CHECK);
    const std::string table = held({"state"});
    expectIn(table, "orientation-check rotation-1 in ");
    expectIn(table, "checking 90");
    expectIn(table, "badge splat, swipe start");
    EXPECT_EQ(held({"pps", "get", object, "badge"}), "splat\n");
    held({"wait", "rotation=checking", "--timeout", "0"});
    EXPECT_EQ(ask(link::RequestCode::OrientationCheckResponse, 1, check.id), 0);
    EXPECT_EQ(ask(link::RequestCode::DoneOrientation, 0, check.id), 0);
    EXPECT_EQ(awaitEvent(events.get(), NAVIGATOR_ORIENTATION_DONE).angle, 90);
    held({"wait", "rotation=none", "angle=90", "--timeout", "0"});
    EXPECT_EQ(property("angle"), "90\n");

    held({"event", "swipe-down"});
    awaitEvent(events.get(), NAVIGATOR_SWIPE_START);
}

} // namespace kelp::test
