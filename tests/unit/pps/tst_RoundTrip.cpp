// SPDX-License-Identifier: Apache-2.0
// Whatever is encoded is decoded to the same, through the C functions alone, for trees of all kinds.

#include "Tree.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

using namespace kelp::pps;

namespace {

// Writes trees, the same at each run, and tells what they are.
class Generator
{
public:
    Generator(pps_encoder_t *encoder, unsigned seed) : _encoder(encoder), _engine(seed) {}

    std::string text(bool isJson)
    {
        std::string tree = children(3, true);
        for (std::size_t i = below(3); !isJson && i > 0; --i) {
            const std::string name = between('@', std::to_string(i), ':');
            isAdded(pps_encoder_start_object(_encoder, name.c_str()));
            tree += tree.empty() ? "" : " ";
            tree += name + "=" + between('{', children(3, true), '}');
            isAdded(pps_encoder_end_object(_encoder));
        }
        return tree;
    }

private:
    std::size_t below(std::size_t bound) { return _engine() % bound; }
    void isAdded(pps_encoder_error_t error) { EXPECT_EQ(error, PPS_ENCODER_OK); }

    std::string string()
    {
        static const auto PIECES =
            split("a|b |\"|\\|\n|\t|\x01|\x7f|/|:|\xc3\xa9|\xf0\x9f\x98\x80|0123456789abcdef");
        std::string text;
        for (std::size_t i = below(12); i > 0; --i) {
            text += PIECES[below(PIECES.size())];
        }
        return text;
    }
    double real()
    {
        const auto value = std::bit_cast<double>(std::uint64_t(_engine()));
        return std::isfinite(value) && below(2) ? value : static_cast<double>(below(10000000)) / 1000;
    }

    std::string children(int depth, bool areNamed)
    {
        std::string tree;
        for (std::size_t i = below(6); i > 0; --i) {
            const std::string name = depth < 3 ? string() : between('n', std::to_string(below(100000)), '-');
            tree += tree.empty() ? "" : " ";
            tree += areNamed ? name + "=" + child(name.c_str(), depth) : child(nullptr, depth);
        }
        return tree;
    }
    std::string child(const char *name, int depth)
    {
        const std::string string = this->string();
        const auto integer = static_cast<std::int64_t>(_engine()) >> below(64);
        const double real = this->real();
        std::string tree;
        switch (below(depth > 0 ? 7 : 5)) {
        case 0:
            isAdded(pps_encoder_add_null(_encoder, name));
            return "null";
        case 1:
            isAdded(pps_encoder_add_bool(_encoder, name, integer > 0));
            return integer > 0 ? "true" : "false";
        case 2:
            isAdded(pps_encoder_add_int64(_encoder, name, integer));
            return std::to_string(integer);
        case 3:
            isAdded(pps_encoder_add_double(_encoder, name, real));
            return describeReal(real);
        case 4:
            isAdded(pps_encoder_add_string(_encoder, name, string.c_str()));
            return between('\'', string, '\'');
        case 5:
            isAdded(pps_encoder_start_array(_encoder, name));
            tree = between('[', children(depth - 1, false), ']');
            isAdded(pps_encoder_end_array(_encoder));
            return tree;
        default:
            isAdded(pps_encoder_start_object(_encoder, name));
            tree = between('{', children(depth - 1, true), '}');
            isAdded(pps_encoder_end_object(_encoder));
            return tree;
        }
    }

    pps_encoder_t *_encoder;
    std::mt19937_64 _engine;
};

} // namespace

TEST(RoundTrip, givesTheSameTree)
{
    std::size_t bytes = 0;
    for (unsigned seed = 0; seed < 5000; ++seed) {
        const bool isJson = seed % 4 == 0;
        pps_encoder_t encoder;
        ASSERT_EQ(pps_encoder_initialize(&encoder, isJson), PPS_ENCODER_OK);
        const std::string tree = Generator(&encoder, seed).text(isJson);
        const std::string text(pps_encoder_buffer(&encoder), pps_encoder_length(&encoder));
        pps_encoder_cleanup(&encoder);

        if (isJson) {
            ASSERT_EQ(describe("json:json:" + text + "\n"), "json=" + between('{', tree, '}')) << text;
        } else {
            ASSERT_EQ(describe(text), tree) << text;
            ASSERT_TRUE(isGood(text)) << text;
        }
        bytes += text.size();
    }
    EXPECT_GT(bytes, 1000000u); // of trees that are not all small
}
