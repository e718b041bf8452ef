// SPDX-License-Identifier: Apache-2.0
// What the encoder writes, what it refuses, and that a refusal leaves no trace.

#include "Tree.h"
#include "tests/unit/FailingMemory.h"

#include <pps/pps.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace {

class Encoder
{
public:
    explicit Encoder(bool isJson = false)
    {
        EXPECT_EQ(pps_encoder_initialize(&_encoder, isJson), PPS_ENCODER_OK);
    }
    ~Encoder() { pps_encoder_cleanup(&_encoder); }
    operator pps_encoder_t *() { return &_encoder; }

    // The text, or "unfinished".
    std::string text()
    {
        const char *const buffer = pps_encoder_buffer(&_encoder);
        EXPECT_EQ(pps_encoder_length(&_encoder), buffer ? std::strlen(buffer) : 0);
        return buffer ? buffer : "unfinished";
    }

private:
    pps_encoder_t _encoder{};
};

void addOneOfEach(pps_encoder_t *encoder)
{
    EXPECT_EQ(pps_encoder_add_null(encoder, "a null"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_bool(encoder, "t", true), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_int(encoder, "i", -2147483647 - 1), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_int64(encoder, "i64", INT64_MIN), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_double(encoder, "d", 0.1), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_string(encoder, "s", "a \"b\": c"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_string(encoder, "c", "\n\t\r\\\a\b\f\v\x01\x1f\x7f/"), PPS_ENCODER_OK);
}

void addArray(pps_encoder_t *encoder)
{
    EXPECT_EQ(pps_encoder_start_array(encoder, "list"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_int(encoder, nullptr, 1), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_start_object(encoder, "ignored"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_string(encoder, "@:\"\n", "["), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_bool(encoder, "", false), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_start_array(encoder, nullptr), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_array(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_array(encoder), PPS_ENCODER_OK);
}

constexpr char LINES[] = "a null:json:null\nt:b:true\ni:n:-2147483648\ni64:n:-9223372036854775808\nd:n:0.1\n"
                         "s::a \"b\": c\nc:c:\\n\\t\\r\\\\\\a\\b\\f\\v\\x01\\x1f\\x7f/\n";
constexpr char MEMBERS[] = R"("a null":null,"t":true,"i":-2147483648,"i64":-9223372036854775808,"d":0.1,)"
                           R"("s":"a \"b\": c","c":"\n\t\r\\\u0007\b\f\u000b\u0001\u001f)"
                           "\x7f/\"";
constexpr char ARRAY[] = R"([1,{"@:\"\n":"[","":false},[]])";

} // namespace

using kelp::pps::split;

TEST(Encoder, writesLinesAndNameLines)
{
    Encoder encoder;
    EXPECT_EQ(encoder.text(), "");
    addOneOfEach(encoder);
    addArray(encoder);
    EXPECT_EQ(pps_encoder_start_object(encoder, "@a:b"), PPS_ENCODER_OK);
    EXPECT_EQ(encoder.text(), "unfinished");
    addOneOfEach(encoder);
    EXPECT_EQ(pps_encoder_start_object(encoder, "inner"), PPS_ENCODER_OK);
    addOneOfEach(encoder);
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_start_object(encoder, "@last"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);

    EXPECT_EQ(encoder.text(), std::string(LINES) + "list:json:" + ARRAY + "\n@a:b\n" + LINES +
                                  "inner:json:{" + MEMBERS + "}\n@last\n");
}

TEST(Encoder, writesOneJsonObjectWhereverItIsLookedAt)
{
    Encoder encoder(true);
    EXPECT_EQ(encoder.text(), "{}");
    addOneOfEach(encoder);
    EXPECT_EQ(encoder.text(), "{" + std::string(MEMBERS) + "}");
    addArray(encoder);
    EXPECT_EQ(pps_encoder_start_object(encoder, "@x"), PPS_ENCODER_OK);
    EXPECT_EQ(encoder.text(), "unfinished");
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(encoder.text(), "{" + std::string(MEMBERS) + ",\"list\":" + ARRAY + ",\"@x\":{}}");
}

TEST(Encoder, writesDoublesThatReadBackAsTheSameDoubles)
{
    const std::pair<double, const char *> rows[] = {
        {0.0, "0.0"},       {-0.0, "-0.0"},
        {5.0, "5.0"},       {-2.5, "-2.5"},
        {1e22, "1e+22"},    {0.1 + 0.2, "0.30000000000000004"},
        {5e-324, "5e-324"}, {std::numeric_limits<double>::max(), "1.7976931348623157e+308"}};
    for (const auto &[value, text] : rows) {
        Encoder encoder;
        EXPECT_EQ(pps_encoder_add_double(encoder, "d", value), PPS_ENCODER_OK);
        EXPECT_EQ(encoder.text(), "d:n:" + std::string(text) + "\n");
    }
}

TEST(Encoder, refusesNamesThatATextCannotCarry)
{
    for (const std::string &name : split("|@a|-a|+a|#a|*a|!a|a:b|a\nb|a\x7f|a longer name\t|a longer name: "
                                         "no|\xff|a longer name, \xc3")) {
        Encoder encoder;
        EXPECT_EQ(pps_encoder_add_int(encoder, name.c_str(), 1), PPS_ENCODER_BAD_NAME) << name;
        EXPECT_EQ(pps_encoder_start_array(encoder, name.c_str()), PPS_ENCODER_BAD_NAME) << name;
        EXPECT_EQ(encoder.text(), "") << name;
    }
    Encoder encoder;
    for (const char *const name : {"@", "@a\n", "@\xff", "@a name that is longer\x7f"}) {
        EXPECT_EQ(pps_encoder_start_object(encoder, name), PPS_ENCODER_BAD_NAME) << name;
    }
    EXPECT_EQ(pps_encoder_start_object(encoder, "@a"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_start_object(encoder, "@b"), PPS_ENCODER_BAD_NAME);
    EXPECT_EQ(pps_encoder_start_array(encoder, "list"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_start_object(encoder, nullptr), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_null(encoder, "\xff"), PPS_ENCODER_BAD_NAME);
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_array(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_int(encoder, "swallowed", 1), PPS_ENCODER_BAD_NAME);
    EXPECT_EQ(pps_encoder_start_object(encoder, "swallowed"), PPS_ENCODER_BAD_NAME);
    EXPECT_EQ(encoder.text(), "@a\nlist:json:[{}]\n");
}

TEST(Encoder, refusesValuesThatATextCannotCarry)
{
    Encoder encoder;
    for (const double value : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        EXPECT_EQ(pps_encoder_add_double(encoder, "d", value), PPS_ENCODER_BAD_VALUE);
    }
    for (const char *const value :
         {"\x80", "a text of more than a vector\xff", "\xed\xa0\x80 of a surrogate"}) {
        EXPECT_EQ(pps_encoder_add_string(encoder, "s", value), PPS_ENCODER_BAD_VALUE);
    }
    EXPECT_EQ(encoder.text(), "");
}

TEST(Encoder, endsWhatWasStartedAndNothingElse)
{
    Encoder encoder;
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_BAD_NESTING);
    EXPECT_EQ(pps_encoder_end_array(encoder), PPS_ENCODER_BAD_NESTING);
    EXPECT_EQ(pps_encoder_start_object(encoder, "@o"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_array(encoder), PPS_ENCODER_BAD_NESTING);
    for (int depth = 0; depth < PPS_MAX_DEPTH; ++depth) {
        ASSERT_EQ(pps_encoder_start_array(encoder, "deep"), PPS_ENCODER_OK);
    }
    EXPECT_EQ(pps_encoder_start_array(encoder, nullptr), PPS_ENCODER_BAD_NESTING);
    EXPECT_EQ(pps_encoder_start_object(encoder, nullptr), PPS_ENCODER_BAD_NESTING);
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_BAD_NESTING);
    for (int depth = 0; depth < PPS_MAX_DEPTH; ++depth) {
        ASSERT_EQ(pps_encoder_end_array(encoder), PPS_ENCODER_OK);
    }
    EXPECT_EQ(encoder.text(), "unfinished");
    EXPECT_EQ(pps_encoder_end_object(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(encoder.text(),
              "@o\ndeep:json:" + std::string(PPS_MAX_DEPTH, '[') + std::string(PPS_MAX_DEPTH, ']') + "\n");
}

TEST(Encoder, takesNothingForAnArgument)
{
    Encoder encoder;
    pps_encoder_t empty{};
    EXPECT_EQ(pps_encoder_initialize(nullptr, false), PPS_ENCODER_BAD_ARGUMENT);
    for (pps_encoder_t *const none : {static_cast<pps_encoder_t *>(nullptr), &empty}) {
        EXPECT_EQ(pps_encoder_add_int(none, "a", 1), PPS_ENCODER_BAD_ARGUMENT);
        EXPECT_EQ(pps_encoder_end_array(none), PPS_ENCODER_BAD_ARGUMENT);
        EXPECT_EQ(pps_encoder_buffer(none), nullptr);
        EXPECT_EQ(pps_encoder_length(none), 0u);
        pps_encoder_cleanup(none);
    }
    EXPECT_EQ(pps_encoder_start_object(encoder, nullptr), PPS_ENCODER_BAD_ARGUMENT);
    EXPECT_EQ(pps_encoder_add_string(encoder, "a", nullptr), PPS_ENCODER_BAD_ARGUMENT);
    EXPECT_EQ(encoder.text(), "");
}

TEST(Encoder, keepsItsTextWhereThereIsNoMemoryForMore)
{
    Encoder encoder;
    const std::string large(100000, 'x');
    EXPECT_EQ(pps_encoder_start_array(encoder, "a"), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_add_string(encoder, nullptr, "x"), PPS_ENCODER_OK);
    {
        pps_encoder_t none;
        const FailingMemory failing;
        errno = EDOM;
        EXPECT_EQ(pps_encoder_initialize(&none, false), PPS_ENCODER_NO_MEMORY);
        EXPECT_EQ(pps_encoder_add_string(encoder, nullptr, large.c_str()), PPS_ENCODER_NO_MEMORY);
        EXPECT_EQ(errno, EDOM);
    }
    EXPECT_EQ(pps_encoder_add_string(encoder, nullptr, large.c_str()), PPS_ENCODER_OK);
    EXPECT_EQ(pps_encoder_end_array(encoder), PPS_ENCODER_OK);
    EXPECT_EQ(encoder.text(), "a:json:[\"x\",\"" + large + "\"]\n");
}
