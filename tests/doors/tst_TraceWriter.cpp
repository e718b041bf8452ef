// SPDX-License-Identifier: Apache-2.0
// The trace as a file: its lines, and its bound.

#include "device/report/TraceWriter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace kelp::device {

namespace {

std::string contentOf(const std::string &path)
{
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

class TraceWriterTest : public testing::Test
{
protected:
    TraceWriterTest() : _folder(::mkdtemp(_pattern)) {}
    ~TraceWriterTest() override { std::filesystem::remove_all(_folder); }
    std::string path() const { return _folder + "/trace"; }

private:
    char _pattern[32] = "/tmp/kelp-trace.XXXXXX";
    std::string _folder;
};

} // namespace

TEST_F(TraceWriterTest, WritesOneLineAnEntryWhateverItsText)
{
    TraceWriter writer(path());

    writer.write({std::chrono::milliseconds(61'007), 42, "app", "request set-badge: 0"});
    writer.write({Time(0), 0, "", "forged\n0.000 - - line\x7f \xc3\xa9"});

    EXPECT_EQ(contentOf(path()), "61.007 42 app request set-badge: 0\n"
                                 "0.000 - - forged\\x0a0.000 - - line\\x7f \xc3\xa9\n");
}

TEST_F(TraceWriterTest, BeginsANewFileAtTheBoundAndKeepsTheLastOne)
{
    constexpr std::uint64_t TWO_LINES = 2 * sizeof "0.000 - - 1"; // its end stands for the line feed
    TraceWriter(path(), TWO_LINES).write({Time(0), 0, "", "1"});
    TraceWriter writer(path(), TWO_LINES); // what is there already counts

    for (const char *text : {"2", "3", "4", "5"}) {
        writer.write({Time(0), 0, "", text});
    }

    EXPECT_EQ(contentOf(path()), "0.000 - - 5\n");
    EXPECT_EQ(contentOf(path() + ".1"), "0.000 - - 3\n0.000 - - 4\n");
}

} // namespace kelp::device
