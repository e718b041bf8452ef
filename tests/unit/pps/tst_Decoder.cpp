// SPDX-License-Identifier: Apache-2.0
// What texts decode to, which are refused, and the walk over the tree.

#include "Tree.h"
#include "tests/unit/FailingMemory.h"

#include <gtest/gtest.h>

#include <climits>

using namespace kelp::pps;

namespace {

class Decoder
{
public:
    explicit Decoder(std::string text) : _text(std::move(text))
    {
        EXPECT_EQ(pps_decoder_initialize(&_decoder, _text.data()), PPS_DECODER_OK);
    }
    ~Decoder() { pps_decoder_cleanup(&_decoder); }
    operator pps_decoder_t *() { return &_decoder; }

private:
    std::string _text;
    pps_decoder_t _decoder{};
};

std::string repeated(std::string_view part, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

std::string nested(int depth)
{
    return "a:json:" + repeated("[", depth) + repeated("]", depth) + "\n";
}

} // namespace

TEST(Decoder, makesATreeOfAText)
{
    const struct {
        const char *text;
        const char *tree;
    } rows[] = {
        {"", ""},
        {"a::\nb::x y:z\r\n", "a='' b='x y:z\r'"},
        {"a:b:true\nb:b:false\n", "a=true b=false"},
        {"x::1\n@a\nl:n:1\nl:n:2\n@b\n@a\n", "x='1' @a={l=1 l=2} @b={} @a={}"},
        {"-@a\n+@b:c\n*a:n:1\n-b\n!#c:json:[1]\n", "2|@a=deleted 4|@b:c={1|a=1 2|b=deleted 24|c=[1]}"},
        {"-@a\nx:n:1\n@b\n", "2|@a={x=1} @b={}"},
        {"a:utf:\\n\n", "a='\\n'"},
        {"a:c:\n", "a=''"},
        {"a:c:\\n\\t\\r\\\\\\a\\b\\f\\v\\\"\\'\\?\n", "a='\n\t\r\\\a\b\f\v\"'?'"},
        {"a:c:\\x4a\\x4A\\xag\\x4a4\\101\\1011\\79\\7\n", "a='JJ\ngJ4AA1\a9\a'"},
        {"a:c:\\xc3\\xa9\\303\\251\n", "a='\xc3\xa9\xc3\xa9'"},
        {"a:b64:\nb:b64:YQ==\nc:b64:YWI=\nd:b64:YWJj\ne:b64:PDw/Pj4+\n",
         "a='' b='a' c='ab' d='abc' e='<<?>>>'"},
        {"a:json:null\nb:json:true\nc:json:false\nd:json:-1\ne:json:\"x\"\n",
         "a=null b=true c=false d=-1 e='x'"},
        {"a:json: [ 1 ,\t[ ] , { } ]\r\n", "a=[1 [] {}]"},
        {"a:json:{\"b\":{\"c\":[{\"d\":null}]},\"b\":1, \"\" : \"\"}\n", "a={b={c=[{d=null}]} b=1 =''}"},
        {"a:json:\"\\\"\\\\\\/\\b\\f\\n\\r\\t-\\u0041\"\n", "a='\"\\/\b\f\n\r\t-A'"},
        {"a:json:\"\\u00e9\\u20AC\\ud83d\\ude00\\u007f\"\n", "a='\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\x7f'"},
        {"a:json:{\"a long \\\"name\\\" and a tail\":\"left of the \\\\ and right of it\\n\"}\n",
         "a={a long \"name\" and a tail='left of the \\ and right of it\n'}"},
        {"\xc3\xbc::\xe6\x97\xa5\n", "\xc3\xbc='\xe6\x97\xa5'"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(describe(row.text), row.tree) << row.text;
        EXPECT_TRUE(isGood(row.text)) << row.text;
    }
}

TEST(Decoder, refusesAMalformedTextAsTheStoreDoes)
{
    for (const std::string &value : split(
             "n:|n:-|n:+1|n: 1|n:1 |n:01|n:-01|n:.5|n:1.|n:1.e5|n:1e|n:1e+|n:0x10|n:NaN|n:inf|n:1e309|"
             "n:-1e999|b:|b:True|b:truex|b:1|c:\\|c:\\q|c:\\x|c:\\xg|c:\\0|c:\\x0|c:\\400|c:\\xff|c:\\8|"
             "c:x\\303|b64:YQ|b64:YQ=|b64:Y===|b64:====|b64:YQ==YQ==|b64:Y-_=|b64:YQ= |b64:AA==|b64:/w==|"
             "json:|json: |json:x|json:nul|json:nulll|json:true false|json:'a'|json:[|json:]|json:[1|"
             "json:[1,|json:[1,]|json:[,1]|json:[1 2]|json:[1]]|json:[1}|json:{|json:{]|json:{\"a\"|"
             "json:{\"a\":|json:{\"a\":}|json:{\"a\":1|json:{\"a\":1,}|json:{,}|json:{a:1}|json:{1:1}|"
             "json:{\"a\" 1}|json:{\"a\":1 \"b\":2}|json:\"|json:\"a|json:\"\\\"|json:\"\\|json:\"\\q\"|"
             "json:\"\t\"|json:\"\\u12\"|json:\"\\u12g4\"|json:\"\\u0000\"|json:\"\\ud800\"|json:\"\\udc00\"|"
             "json:\"\\ud800x\"|json:\"\\ud800\\n\"|json:\"\\ud800\\u0041\"|json:-|json:01|json:1e309|"
             "json:\"a\"\"b\"")) {
        const std::string text = "good::1\na:" + value + "\ngood::2\n";
        EXPECT_EQ(describe(text), "error 2") << value;
        EXPECT_FALSE(isGood(text)) << value;
    }
    for (const std::string &text : split("a:n:1|\n|a\n|a:n\n|a::1\n\n|:n:1\n|-\n|@\n|"
                                         "a\tb::\n|a::\xff\n|@\xc3\n|a:json:\"\xed\xa0\x80\"\n")) {
        EXPECT_EQ(describe(text), "error 2") << text;
        EXPECT_FALSE(isGood(text)) << text;
    }
}

TEST(Decoder, readsNumbersAsIntegersWhereTheyAreWrittenAsSuch)
{
    enum Fit { INT, INT64, BEYOND, REAL };
    const struct {
        const char *number;
        Fit fit;
        double value;
    } rows[] = {
        {"0", INT, 0},
        {"-0", INT, 0},
        {"2147483647", INT, INT_MAX},
        {"-2147483648", INT, INT_MIN},
        {"2147483648", INT64, 2147483648.0},
        {"-2147483649", INT64, -2147483649.0},
        {"9223372036854775807", INT64, 9223372036854775807.0},
        {"-9223372036854775808", INT64, -9223372036854775808.0},
        {"9223372036854775808", BEYOND, 9223372036854775808.0},
        {"-9223372036854775809", BEYOND, -9223372036854775808.0},
        {"18446744073709551617", BEYOND, 18446744073709551616.0},
        {"1.0", REAL, 1},
        {"1e2", REAL, 100},
        {"-1.25E-2", REAL, -0.0125},
        {"0.1", REAL, 0.1},
        {"9007199254740993.0", REAL, 9007199254740992.0},
        {"1e23", REAL, 1e23},
        {"123456789012345678901234567890e-30", REAL, 0.12345678901234568},
        {"1.7976931348623157e308", REAL, 1.7976931348623157e308},
        {"5e-324", REAL, 5e-324},
        {"1e-999999999999999999999", REAL, 0},
        {"0e999999999999999999999", REAL, 0},
    };
    for (const auto &row : rows) {
        constexpr auto TOO_LARGE = PPS_DECODER_DOES_NOT_FIT;
        constexpr pps_decoder_error_t NARROW[] = {PPS_DECODER_OK, TOO_LARGE, TOO_LARGE,
                                                  PPS_DECODER_WRONG_TYPE};
        const auto narrowResult = NARROW[row.fit];
        const auto wideResult = row.fit == INT64 ? PPS_DECODER_OK : narrowResult;
        Decoder decoder("a:n:" + std::string(row.number) + "\n");
        int narrow = 7;
        std::int64_t wide = 7;
        double real = 7;
        EXPECT_EQ(pps_decoder_is_integer(decoder, "a"), row.fit != REAL) << row.number;
        EXPECT_EQ(pps_decoder_get_int(decoder, "a", &narrow), narrowResult) << row.number;
        EXPECT_EQ(narrow, narrowResult ? 7 : std::stol(row.number)) << row.number;
        EXPECT_EQ(pps_decoder_get_int64(decoder, "a", &wide), wideResult) << row.number;
        EXPECT_EQ(wide, wideResult ? 7 : std::stol(row.number)) << row.number;
        EXPECT_EQ(pps_decoder_get_double(decoder, "a", &real), PPS_DECODER_OK) << row.number;
        EXPECT_EQ(real, row.value) << row.number;
    }
}

TEST(Decoder, walksUpAndDown)
{
    Decoder decoder("first:n:1\n@o\nx:json:[{},[2,3]]\n-gone\n@last\n");
    const char *string = nullptr;
    EXPECT_EQ(pps_decoder_length(decoder), 3);
    EXPECT_STREQ(pps_decoder_name(decoder), "first");
    EXPECT_EQ(pps_decoder_pop(decoder), PPS_DECODER_NOT_FOUND);
    EXPECT_EQ(pps_decoder_push(decoder, nullptr), PPS_DECODER_WRONG_TYPE);
    EXPECT_EQ(pps_decoder_push(decoder, "x"), PPS_DECODER_NOT_FOUND);

    ASSERT_EQ(pps_decoder_push(decoder, "@o"), PPS_DECODER_OK);
    EXPECT_EQ(pps_decoder_length(decoder), 2);
    EXPECT_EQ(pps_decoder_type(decoder, "gone"), PPS_TYPE_DELETED);
    EXPECT_EQ(pps_decoder_flags(decoder, "gone"), PPS_DELETED);
    EXPECT_EQ(pps_decoder_push(decoder, "gone"), PPS_DECODER_WRONG_TYPE);
    ASSERT_EQ(pps_decoder_push(decoder, nullptr), PPS_DECODER_OK); // "x", the first child
    EXPECT_EQ(pps_decoder_name(decoder), nullptr);
    ASSERT_EQ(pps_decoder_push(decoder, nullptr), PPS_DECODER_OK);
    EXPECT_EQ(pps_decoder_length(decoder), 0);
    EXPECT_EQ(pps_decoder_type(decoder, nullptr), PPS_TYPE_NONE);
    ASSERT_EQ(pps_decoder_pop(decoder), PPS_DECODER_OK);
    EXPECT_EQ(pps_decoder_type(decoder, nullptr), PPS_TYPE_OBJECT); // the one that was left
    EXPECT_EQ(pps_decoder_goto_index(decoder, 1), PPS_DECODER_OK);
    EXPECT_EQ(pps_decoder_goto_index(decoder, 2), PPS_DECODER_NOT_FOUND);
    EXPECT_EQ(pps_decoder_get_string(decoder, nullptr, &string), PPS_DECODER_NOT_FOUND);
    EXPECT_EQ(pps_decoder_goto_index(decoder, -1), PPS_DECODER_NOT_FOUND);
    EXPECT_EQ(pps_decoder_push(decoder, nullptr), PPS_DECODER_NOT_FOUND);
    ASSERT_EQ(pps_decoder_pop(decoder), PPS_DECODER_OK);
    ASSERT_EQ(pps_decoder_pop(decoder), PPS_DECODER_OK);
    EXPECT_STREQ(pps_decoder_name(decoder), "@o");
    EXPECT_EQ(pps_decoder_goto_index(decoder, 2), PPS_DECODER_OK);
    EXPECT_STREQ(pps_decoder_name(decoder), "@last");
    EXPECT_EQ(pps_decoder_get_string(decoder, nullptr, &string), PPS_DECODER_WRONG_TYPE);
    EXPECT_EQ(string, nullptr);
}

TEST(Decoder, takesNothingForAnArgument)
{
    Decoder decoder("a:n:1\n");
    pps_decoder_t empty;
    EXPECT_EQ(pps_decoder_initialize(nullptr, nullptr), PPS_DECODER_BAD_ARGUMENT);
    EXPECT_EQ(pps_decoder_initialize(&empty, nullptr), PPS_DECODER_BAD_ARGUMENT);
    for (pps_decoder_t *const none : {static_cast<pps_decoder_t *>(nullptr), &empty}) {
        EXPECT_EQ(pps_decoder_length(none), -1);
        EXPECT_EQ(pps_decoder_goto_index(none, 0), PPS_DECODER_BAD_ARGUMENT);
        EXPECT_EQ(pps_decoder_name(none), nullptr);
        EXPECT_EQ(pps_decoder_type(none, "a"), PPS_TYPE_NONE);
        EXPECT_EQ(pps_decoder_push(none, nullptr), PPS_DECODER_BAD_ARGUMENT);
        EXPECT_EQ(pps_decoder_pop(none), PPS_DECODER_BAD_ARGUMENT);
        pps_decoder_cleanup(none);
    }
    EXPECT_EQ(pps_decoder_get_int64(decoder, nullptr, nullptr), PPS_DECODER_BAD_ARGUMENT);
}

TEST(Decoder, nestsUpToItsBoundInEachAttribute)
{
    const std::string deepest = nested(PPS_MAX_DEPTH);
    Decoder decoder("@o\n" + deepest + deepest);
    for (int depth = 0; depth < PPS_MAX_DEPTH + 1; ++depth) {
        ASSERT_EQ(pps_decoder_push(decoder, nullptr), PPS_DECODER_OK) << depth;
    }
    EXPECT_EQ(pps_decoder_length(decoder), 0);
    EXPECT_EQ(describe(nested(PPS_MAX_DEPTH + 1)), "error 2");
    EXPECT_EQ(describe("a:json:" + std::string(1 << 20, '[') + "\n"), "error 2");
}

TEST(Decoder, takesTextsOfAnyLength)
{
    const int count = 1000000;
    Decoder array("a:json:[" + repeated("-1.5,", count) + "\"" + std::string(count, 'x') + "\"]\n");
    Decoder lines(repeated("@o\n+a:n:1\n", count));
    ASSERT_EQ(pps_decoder_push(array, "a"), PPS_DECODER_OK);
    EXPECT_EQ(pps_decoder_length(array), count + 1);
    EXPECT_EQ(pps_decoder_goto_index(array, count), PPS_DECODER_OK);
    EXPECT_EQ(pps_decoder_type(array, nullptr), PPS_TYPE_STRING);
    EXPECT_EQ(pps_decoder_length(lines), count);
}

TEST(Decoder, reportsThatThereIsNoMemory)
{
    char text[] = "a:n:1\n";
    pps_decoder_t decoder;
    const FailingMemory failing;
    errno = EDOM;
    EXPECT_EQ(pps_decoder_initialize(&decoder, text), PPS_DECODER_NO_MEMORY);
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(pps_decoder_length(&decoder), -1);
}
