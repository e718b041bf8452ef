// SPDX-License-Identifier: Apache-2.0
// What a person's commands answer through the device's door.

#include "DoorTest.h"

#include <cerrno>

namespace kelp::test {

class DoorCommands : public DoorTest
{
};

TEST_F(DoorCommands, AWrongCommandIsRefusedWithWordsThatHelp)
{
    startDevice();
    DoorClient person = control();
    struct Row {
        link::Command command;
        const char *help;
    };
    const Row rows[] = {
        {{"no-such", {}}, "event, fail, objects, state, status, stop"},
        {{"", {}}, "event, fail, objects, state, status, stop"},
        {{"state", {{"x", "y"}}}, "none"},
        {{"event", {}}, "first argument"},
        {{"event", {{"app", "a"}, {"name", "exit"}}}, "first argument"},
        {{"event", {{"name", "no-such"}}}, ""},
        {{"fail", {{"request", "no-such"}, {"errno", "1"}}}, "set-badge"},
        {{"fail", {{"request", "set-badge"}}}, "errno must be"},
        {{"fail", {{"request", "set-badge"}, {"errno", "4096"}}}, "errno must be"},
        {{"fail", {{"request", "set-badge"}, {"errno", "1x"}}}, "errno must be"},
        {{"fail", {{"request", "set-badge"}, {"errno", "1"}, {"times", "-1"}}}, "times must be"},
        {{"fail", {{"request", "set-badge"}, {"errno", "1"}, {"times", "1"}, {"x", ""}}}, "request=NAME"},
    };

    for (const Row &row : rows) {
        const link::Reply answer = person.ask(row.command);
        EXPECT_EQ(answer.status, EINVAL) << row.command.name;
        EXPECT_NE(answer.text.find(row.help), std::string::npos) << answer.text;
    }
}

TEST_F(DoorCommands, RequestsFailAsOftenAsWasAsked)
{
    startDevice();
    DoorClient client = application();
    const link::Request request{link::RequestCode::ClearClosePrompt, 0, {}, {}};

    const link::Reply answer =
        control().command("fail", {{"request", "clear-close-prompt"}, {"errno", "28"}, {"times", "2"}});

    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_EQ(client.ask(request).status, ENOSPC);
    EXPECT_EQ(client.ask(request).status, ENOSPC);
    EXPECT_EQ(client.ask(request).status, 0);
}

TEST_F(DoorCommands, LongStatesComeInPartsThoughTheyAreReadLate)
{
    startDevice();
    std::vector<DoorClient> clients;
    std::vector<link::UniqueFd> channels;
    const link::Request prompt{link::RequestCode::SetClosePrompt, 0, "title", std::string(4000, 'm')};
    for (int i = 0; i < 20; ++i) {
        clients.push_back(application());
        channels.push_back(clients.back().openEvents());
        ASSERT_EQ(clients.back().ask(prompt).status, 0);
    }
    DoorClient person = control();

    constexpr int STATES = 8; // together more than the socket holds
    for (int i = 0; i < STATES; ++i) {
        ASSERT_EQ(person.send(link::Command{"state", {}}), 0);
    }
    EXPECT_EQ(control().command("status").status, 0); // by now all of them are answered

    std::string text;
    int parts = 0;
    for (int i = 0; i < STATES;) {
        const std::optional<link::Reply> part = person.receive();
        text += part.value().text;
        i += part.value().more ? 0 : 1;
        ++parts;
    }
    EXPECT_EQ(parts, 2 * STATES);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), STATES * (1 + 20));
    EXPECT_NE(text.find("\"applications\":20}"), std::string::npos);
}

} // namespace kelp::test
