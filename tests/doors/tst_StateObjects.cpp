// SPDX-License-Identifier: Apache-2.0
// What the device publishes of itself: its words, and that nobody else can put others in their place.

#include "DoorTest.h"
#include "device/report/StateObjects.h"

#include <cerrno>

#include <unistd.h>

namespace kelp::test {

namespace {

const std::string OBJECT = "/services/navigator/tst_SocketDoor";

} // namespace

class StateObjects : public DoorTest
{
};

TEST_F(StateObjects, AreTheDevicesAlone)
{
    using link::OpenObject;
    using link::PathCall;
    startDevice({}, {.objectBytes = 256});
    EXPECT_TRUE(traces("/services/navigator-requests is not published: Message too long"));
    DoorClient client = application();
    const link::UniqueFd events = client.openEvents();
    eventually([&] { return client.ask(OpenObject{OBJECT, OpenObject::SUBSCRIBE, 0}).status == 0; });
    constexpr std::uint32_t ALL = OpenObject::SUBSCRIBE | OpenObject::PUBLISH | OpenObject::CREATE;
    const link::Body refused[] = {
        OpenObject{"/services/navigator/ghost", ALL, 0666},
        OpenObject{"/services/deviceproperties", ALL, 0666},
        OpenObject{OBJECT + "?server", ALL, 0666},
        PathCall{PathCall::Kind::Unlink, 0, OBJECT},
        PathCall{PathCall::Kind::Access, W_OK, "/services/navigator"},
    };

    for (const link::Body &body : refused) {
        EXPECT_EQ(client.ask(body).status, EACCES) << &body - refused;
    }
    const std::string listed = control().command("objects", {{"path", "/services/navigator"}}).text;
    EXPECT_NE(listed.find(R"("tst_SocketDoor","mode":"0444")"), std::string::npos) << listed;
}

TEST(StateObjectsText, CanBeWaitedForAndItsLackIsNotedOnce)
{
    device::Store store({.objectBytes = 512});
    std::vector<std::string> notes;
    device::StateObjects objects(store, [&](const std::string &note) { notes.push_back(note); });
    device::ApplicationState application;
    application.id = "a";
    const auto published = [&](const std::string &words) {
        objects.publish(std::vector<device::ApplicationState>{application});
        device::DescriptorId reader = 0;
        return store.open("/services/navigator/a", {.subscribe = true}, {}, reader) == 0 &&
               store.render(reader).text.find(words) != std::string::npos;
    };

    EXPECT_TRUE(published("rotation::none\nrotationId:json:null\nrotationAngle:json:null\n"));
    application.rotation = {"rotation-1", 90, false};
    EXPECT_TRUE(published("rotation::checking\nrotationId::rotation-1\nrotationAngle:n:90\n"));
    EXPECT_EQ(notes.size(), 0U);
    for (const char filler : {'x', 'y'}) {
        application.label.title = std::string(512, filler);
        EXPECT_FALSE(published("rotation")); // rather than what is no longer so
    }
    EXPECT_EQ(notes, std::vector<std::string>{"/services/navigator/a is not published: Message too long"});
    application.label = {"Notes", "1.2"};
    EXPECT_TRUE(published("title::Notes\nversion::1.2\n"));
    application.id = "a?nopersist";   // a program's name can be that, and would be another's object
    EXPECT_FALSE(published("Notes")); // which has gone with its application
}

} // namespace kelp::test
