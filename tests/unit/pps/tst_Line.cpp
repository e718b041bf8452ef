// SPDX-License-Identifier: Apache-2.0
// Lines taken apart, and values and UTF-8 checked, as the device's store does it; the decoder's own tests
// hold all the rest against the same functions.

#include "Tree.h"

#include <gtest/gtest.h>

using namespace kelp::pps;

namespace {

// "kind flags name", and for an attribute "encoding|tail|value".
std::string describe(const Line &line)
{
    static const char *const KINDS[] = {"object ", "attribute ", "deleted "};
    static const char *const ENCODINGS[] = {" text|", " escaped|", " number|",
                                            " bool|", " json|",    " base64|"};
    std::string text = KINDS[static_cast<int>(line.kind)] + std::to_string(line.flags);
    text.append(line.isObject ? " @" : " ").append(line.name);
    if (line.kind == Line::Kind::Attribute) {
        text.append(ENCODINGS[static_cast<int>(line.encoding)])
            .append(line.tail)
            .append("|")
            .append(line.value);
    }
    return text;
}

} // namespace

TEST(Line, isTakenApartAndOffTheText)
{
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"level:n:87\nx", "attribute 0 level number|n:87|87"},
        {"*-+#!a::b:c\nx", "attribute 31 a text|:b:c|b:c"},
        {"a:c:\nx", "attribute 0 a escaped|c:|"},
        {"a:b:1\nx", "attribute 0 a bool|b:1|1"},
        {"a:b64:1\nx", "attribute 0 a base64|b64:1|1"},
        {"a:json:1\nx", "attribute 0 a json|json:1|1"},
        {"a:jsom:\r\nx", "attribute 0 a text|jsom:\r|\r"},
        {"+@a:b\nx", "object 4 @a:b"},
        {"-@-\nx", "deleted 2 @-"},
        {"-a name of more than sixteen bytes\nx", "deleted 2 a name of more than sixteen bytes"},
    };
    for (const auto &[whole, expected] : rows) {
        std::string_view text = whole;
        Line line;
        ASSERT_TRUE(takeLine(text, line)) << whole;
        EXPECT_EQ(text, "x") << whole;
        EXPECT_EQ(describe(line), expected) << whole;
    }
}

TEST(Line, isLeftWhereItStandsIfMalformed)
{
    for (const std::string &malformed : split("|\n|-\n|@\n|-@\n|:n:1\n|a\n|+a\n|a:n\n|a:n\nb::\n|a\tb:n:1\n|@"
                                              "a\x7f\n|a name of sixteen or more\x01:n:1\n|"
                                              "a:n:1|-a|@a|a::a long value without its line feed")) {
        std::string_view text = malformed;
        Line line;
        EXPECT_FALSE(takeLine(text, line)) << malformed;
        EXPECT_EQ(text, malformed);
    }
}

TEST(Line, hasAValueThatItsWholeTextMakes)
{
    EXPECT_TRUE(isValid(Encoding::Number, std::string_view("12x", 2)));
    EXPECT_FALSE(isValid(Encoding::Number, "12x"));
    EXPECT_TRUE(isValid(Encoding::Number, "-9223372036854775808"));
    EXPECT_FALSE(isValid(Encoding::Number, "9223372036854775808"));
    EXPECT_FALSE(isValid(Encoding::Json, "[{\"a\":-9223372036854775809}]"));
    EXPECT_TRUE(isValid(Encoding::Number, "9223372036854775808.0"));
    EXPECT_FALSE(isValid(Encoding::Number, std::string_view("1\n", 2)));
    EXPECT_TRUE(isValid(Encoding::Json, std::string_view("[]]", 2)));
    EXPECT_FALSE(isValid(Encoding::Json, "[\n]"));
    EXPECT_FALSE(isValid(Encoding::Json, ""));
    EXPECT_TRUE(isValid(Encoding::Text, "\\"));
}

TEST(Utf8, hasOneFormForEachCharacterAndNoOther)
{
    for (const std::string &good : split("|a|\x7f|\xc2\x80|\xdf\xbf|\xe0\xa0\x80|\xed\x9f\xbf|\xee\x80\x80|"
                                         "\xf0\x90\x80\x80|\xf4\x8f\xbf\xbf")) {
        EXPECT_TRUE(isUtf8(good));
        EXPECT_TRUE(isUtf8("beyond sixteen bytes " + good + " and more"));
        // Cut anywhere inside, it is none.
        for (std::size_t cut = 1; cut < good.size(); ++cut) {
            EXPECT_FALSE(isUtf8(good.substr(0, cut)));
            EXPECT_FALSE(isUtf8(good.substr(0, cut) + "text"));
        }
    }
    EXPECT_FALSE(isUtf8({"\0", 1}));
    for (const std::string &bad :
         split("\x80|\xc1\xbf|\xe0\x9f\xbf|\xed\xa0\x80|\xf0\x8f\xbf\xbf|\xf4\x90\x80\x80|"
               "\xf5\x80\x80\x80|\xff")) {
        EXPECT_FALSE(isUtf8(bad));
        EXPECT_FALSE(isUtf8("beyond sixteen bytes " + bad + " and more"));
    }
}
