// SPDX-License-Identifier: Apache-2.0
// What is UTF-8, what is an id, and how foreign texts are shown, at the edges.
#include "device/navigator/ClientText.h"

#include <gtest/gtest.h>

namespace kelp::device {

using namespace std::string_literals;

TEST(ClientText, utf8IsWhatEncodesACodePointInItsShortestForm)
{
    for (const std::string &text :
         {""s, "a\0b"s, "\x7f"s, "\xc2\x80"s, "\xdf\xbf"s, "\xe0\xa0\x80"s, "\xed\x9f\xbf"s, "\xee\x80\x80"s,
          "\xf0\x90\x80\x80"s, "\xf4\x8f\xbf\xbf"s, "a\xc3\xa4z"s}) {
        EXPECT_TRUE(isUtf8(text)) << inQuotes(text);
    }
    for (const std::string &text :
         {"\x80"s, "\xc1\xbf"s, "\xc2"s, "\xc2z"s, "\xe0\x9f\xbf"s, "\xed\xa0\x80"s, "\xe1\x80"s,
          "\xe1\x80z"s, "\xf0\x8f\xbf\xbf"s, "\xf4\x90\x80\x80"s, "\xf1\x80\x80"s, "\xf1\x80\x80z"s,
          "\xf5\x80\x80\x80"s, "\xff"s, "a\xc2"s}) {
        EXPECT_FALSE(isUtf8(text)) << inQuotes(text);
    }
}

TEST(ClientText, idIsPrintableAsciiWithinItsBound)
{
    EXPECT_TRUE(isId(" "));
    EXPECT_TRUE(isId("~"));
    EXPECT_TRUE(isId(std::string(255, 'x')));
    for (const std::string &text : {""s, "\x1f"s, "\x7f"s, "\xc3\xa4"s, "a\0"s, std::string(256, 'x')}) {
        EXPECT_FALSE(isId(text)) << inQuotes(text);
    }
}

TEST(ClientText, shownTextIsOneShortLineOfAscii)
{
    EXPECT_EQ(inQuotes("a\n\"\\\x01\xc3~"), R"("a\n\"\\\x01\xc3~")");
    EXPECT_EQ(inQuotes(std::string(100, 'x')), '"' + std::string(100, 'x') + '"');
    EXPECT_EQ(inQuotes(std::string(101, 'x')), '"' + std::string(100, 'x') + "...\"");
}

} // namespace kelp::device
