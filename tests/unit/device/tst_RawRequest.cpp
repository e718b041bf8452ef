// SPDX-License-Identifier: Apache-2.0
// The gate for requests in PPS text: what it takes "msg" from, and what it refuses.
#include "device/navigator/RawRequest.h"

#include <gtest/gtest.h>

namespace kelp::device {

using namespace std::string_literals;

TEST(RawRequest, messageIsTheTextOfItsAttribute)
{
    const std::pair<std::string, std::string> cases[] = {
        {"msg::minimizeWindow\n", "minimizeWindow"},
        {"@navigator\nid:n:7\nmsg::go\ndat:json:{\"a\":1}\n", "go"},
        {"@n\nmsg:c:g\\x6f\n", "go"},
        {"msg:b64:Z28=\n", "go"},
        {"msg:someday:go\n", "go"}, // an encoding that nobody knows reads as text
        {"msg::a:b::c\n", "a:b::c"},
        {"msg::\n", ""},
        {"msg::first\nmsg::last\n", "last"},
        {"msg::\xc3\xa4\n", "\xc3\xa4"},
    };
    for (const auto &[text, message] : cases) {
        EXPECT_EQ(messageOfRawRequest(text), message) << text;
    }
}

TEST(RawRequest, nothingIsTakenFromMalformedTextOrWhereItIsNoText)
{
    for (const std::string &text : {""s,
                                    "\n"s,
                                    "msg::go"s,
                                    "msg::go\nid::7"s,
                                    "msg:go\n"s,
                                    "msg\n"s,
                                    "::go\n"s,
                                    "@name"s,
                                    "@name\n"s,
                                    "@\nmsg::go\n"s,
                                    "@a\nmsg::go\n@b\n"s,
                                    "msg::a\0b\n"s,
                                    "id::7\n"s,
                                    "msg::go\n@late\n"s,
                                    "msg::go\n\n"s,
                                    "-msg\n"s,
                                    "msg::\xff\n"s,
                                    "msg:n:5\n"s,
                                    "msg:b:true\n"s,
                                    "msg:json:[]\n"s,
                                    "Msg::go\n"s}) {
        EXPECT_EQ(messageOfRawRequest(text), std::nullopt) << text;
    }
}

} // namespace kelp::device
