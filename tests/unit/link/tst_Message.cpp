// SPDX-License-Identifier: Apache-2.0
// The messages of the device's socket: what is encoded comes back, and nothing else is taken for a message.

#include "platform/link/Limits.h"
#include "platform/link/Message.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>

using namespace kelp::link;

namespace {

// Messages of all kinds, the same at each run.
class Generator
{
public:
    Message message()
    {
        static Body (Generator::*const KINDS[])() = {
            &Generator::hello,    &Generator::request,  &Generator::open,       &Generator::command,
            &Generator::reply,    &Generator::event,    &Generator::openObject, &Generator::descriptorCall,
            &Generator::pathCall, &Generator::openCalls};
        static_assert(std::size(KINDS) == std::variant_size_v<Body>);
        return {static_cast<std::uint32_t>(number()), (this->*KINDS[below(std::size(KINDS))])()};
    }
    std::size_t below(std::size_t bound) { return _engine() % bound; }

private:
    Body hello()
    {
        return Hello{static_cast<std::uint32_t>(number()), below(2) ? Role::Control : Role::Application};
    }
    Body request() { return Request{static_cast<RequestCode>(1 + below(15)), number(), text(), text()}; }
    Body open() { return OpenEvents{number()}; }
    Body command()
    {
        Command command{text(), {}};
        for (std::size_t i = below(4); i > 0; --i) {
            command.arguments.emplace_back(text(), text());
        }
        return command;
    }
    Body reply() { return Reply{number(), below(2) == 1, text()}; }
    Body event()
    {
        return Event{number(), number(), number(), number(), number(), number(), number(), text(), text()};
    }
    Body openObject()
    {
        return OpenObject{text(), static_cast<std::uint32_t>(number()), static_cast<std::uint32_t>(number())};
    }
    Body descriptorCall()
    {
        return DescriptorCall{static_cast<DescriptorCall::Kind>(1 + below(2)),
                              static_cast<std::uint32_t>(number())};
    }
    Body pathCall()
    {
        return PathCall{static_cast<PathCall::Kind>(1 + below(3)), static_cast<std::uint32_t>(number()),
                        text()};
    }
    Body openCalls() { return OpenCalls{}; }
    std::int32_t number()
    {
        static constexpr std::int32_t EDGES[] = {0, 1, -1, std::numeric_limits<std::int32_t>::min(),
                                                 std::numeric_limits<std::int32_t>::max()};
        return below(2) ? EDGES[below(std::size(EDGES))] : static_cast<std::int32_t>(_engine());
    }
    std::string text() // of any bytes
    {
        std::string text(below(20), '\0');
        for (char &byte : text) {
            byte = static_cast<char>(below(256));
        }
        return text;
    }

    std::mt19937 _engine{20240229};
};

// The bytes of a message, number by number.
struct Bytes {
    std::string bytes;

    explicit Bytes(std::uint32_t kind, std::uint32_t magic = 0x706c656b)
    {
        number(magic).number(1).number(kind);
    }
    Bytes &number(std::uint32_t value)
    {
        bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
        return *this;
    }
    Bytes &text(std::size_t length)
    {
        number(static_cast<std::uint32_t>(length));
        bytes.append(length, 'x');
        return *this;
    }
    Bytes &arguments(std::uint32_t count)
    {
        number(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            text(1).text(1);
        }
        return *this;
    }
    Bytes &numbers(int count)
    {
        for (int i = 0; i < count; ++i) {
            number(0);
        }
        return *this;
    }
};

enum Kind : std::uint32_t {
    HELLO = 1,
    REQUEST,
    OPEN_EVENTS,
    COMMAND,
    REPLY,
    EVENT,
    OPEN_OBJECT,
    DESCRIPTOR_CALL,
    PATH_CALL,
    OPEN_CALLS,
    NONE
};

} // namespace

TEST(Message, comesBackWholeAndFromNoOtherLength)
{
    Generator generator;
    for (int i = 0; i < 2000; ++i) {
        const Message message = generator.message();
        const std::string bytes = encode(message);

        ASSERT_EQ(decode(bytes), message) << "message " << i;
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            ASSERT_FALSE(decode(bytes.substr(0, length))) << "message " << i << " cut at " << length;
        }
        ASSERT_FALSE(decode(bytes + '\0')) << "message " << i;
    }
}

TEST(Message, hasItsFieldsInTheirOrder)
{
    Bytes expected(EVENT);
    for (const std::uint32_t number : {3, 1, 2, 0, 90, 768, 1280}) {
        expected.number(number);
    }
    EXPECT_EQ(encode({1, Event{3, 1, 2, 0, 90, 768, 1280, "x", "xx"}}), expected.text(1).text(2).bytes);
}

TEST(Message, hasOneEncodingOnly)
{
    Generator generator;
    int taken = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string bytes = encode(generator.message());
        bytes[generator.below(bytes.size())] = static_cast<char>(generator.below(256));

        if (const auto message = decode(bytes)) {
            ASSERT_EQ(encode(*message), bytes) << "message " << i;
            ++taken;
        }
    }
    EXPECT_GT(taken, 1000); // a changed number or letter is a message too
}

TEST(Message, isTakenUpToItsBoundsAndNotAbove)
{
    const struct {
        const char *name;
        Bytes bytes;
        bool isMessage;
    } rows[] = {
        {"role at its least", Bytes(HELLO).number(1).number(1), true},
        {"role at its most", Bytes(HELLO).number(1).number(2), true},
        {"role below", Bytes(HELLO).number(1).number(0), false},
        {"role above", Bytes(HELLO).number(1).number(3), false},
        {"another magic", Bytes(HELLO, 0x706c656c).number(1).number(1), false},
        {"kind below", Bytes(0).number(1).number(1), false},
        {"kind above", Bytes(NONE).number(1).number(1), false},
        {"code at its least", Bytes(REQUEST).number(1).number(0).text(0).text(0), true},
        {"code at its most", Bytes(REQUEST).number(15).number(0).text(0).text(0), true},
        {"code below", Bytes(REQUEST).number(0).number(0).text(0).text(0), false},
        {"code above", Bytes(REQUEST).number(16).number(0).text(0).text(0), false},
        {"texts at their longest", Bytes(REQUEST).number(1).number(0).text(4096).text(4096), true},
        {"first text too long", Bytes(REQUEST).number(1).number(0).text(4097).text(0), false},
        {"second text too long", Bytes(REQUEST).number(1).number(0).text(0).text(4097), false},
        {"flags of any value", Bytes(OPEN_EVENTS).number(0xffffffff), true},
        {"length beyond the end", Bytes(REQUEST).number(1).number(0).text(0).number(1), false},
        {"length beyond all memory", Bytes(REPLY).number(0).number(0).number(0xffffffff), false},
        {"arguments at their most", Bytes(COMMAND).text(255).arguments(32), true},
        {"too many arguments", Bytes(COMMAND).text(1).arguments(33), false},
        {"name too long", Bytes(COMMAND).text(256).arguments(0), false},
        {"argument's name at its longest", Bytes(COMMAND).text(0).number(1).text(255).text(4096), true},
        {"argument's name too long", Bytes(COMMAND).text(0).number(1).text(256).text(0), false},
        {"argument's value too long", Bytes(COMMAND).text(0).number(1).text(0).text(4097), false},
        {"more at its most", Bytes(REPLY).number(0).number(1).text(65536), true},
        {"more above", Bytes(REPLY).number(0).number(2).text(0), false},
        {"reply too long", Bytes(REPLY).number(0).number(0).text(65537), false},
        {"ids at their longest", Bytes(EVENT).numbers(7).text(255).text(255), true},
        {"group id too long", Bytes(EVENT).numbers(7).text(256).text(0), false},
        {"id too long", Bytes(EVENT).numbers(7).text(0).text(256), false},
    };
    for (const auto &row : rows) {
        const auto message = decode(row.bytes.bytes);
        EXPECT_EQ(message.has_value(), row.isMessage) << row.name;
        EXPECT_EQ(message ? encode(*message) : row.bytes.bytes, row.bytes.bytes) << row.name;
    }
}

TEST(Message, isCutAtTheBoundsOfItsTexts)
{
    const auto cut = decode(encode({1, Command{std::string(256, 'n'), {40, {std::string(256, 'a'), "v"}}}}));

    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->body, Body(Command{std::string(255, 'n'), {32, {std::string(255, 'a'), "v"}}}));
}

TEST(Message, fitsADatagramWhateverItHolds)
{
    const std::string id(MAX_ID_BYTES, 'i');
    const std::string text(MAX_TEXT_BYTES, 't');
    EXPECT_LE(encode({1, Request{RequestCode::SetClosePrompt, 0, text, text}}).size(), MAX_MESSAGE_BYTES);
    EXPECT_LE(encode({1, Reply{0, true, std::string(MAX_REPLY_TEXT_BYTES, 'r')}}).size(), MAX_MESSAGE_BYTES);
    EXPECT_LE(encode({1, Event{0, 0, 0, 0, 0, 0, 0, id, id}}).size(), MAX_EVENT_BYTES);
}

TEST(Message, fitsADatagramAsACommandToo)
{
    const std::pair<std::string, std::string> argument(std::string(MAX_ID_BYTES, 'i'),
                                                       std::string(MAX_TEXT_BYTES, 't'));
    const Command largest{argument.first, {MAX_ARGUMENTS, argument}};
    EXPECT_LE(encode({1, largest}).size(), MAX_MESSAGE_BYTES);
}
