// SPDX-License-Identifier: Apache-2.0
// kelp-device pps: a person looks at objects and changes them.

#include "Journey.h"

#include <algorithm>
#include <csignal>
#include <fstream>

namespace kelp::test {

class Pps : public Journey
{
protected:
    Pps() { held({"start"}); }

    static std::vector<std::string> pps(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "pps");
        return arguments;
    }
    static std::string done(const std::vector<std::string> &arguments) { return held(pps(arguments)); }

    struct Refusal {
        std::vector<std::string> arguments;
        int exitCode;
        std::string sentence;
    };
    static void expectRefusal(const Refusal &refusal)
    {
        const Result result = Command::run(kelpDevice(pps(refusal.arguments)));
        EXPECT_EQ(result.exitCode, refusal.exitCode) << refusal.sentence;
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.errors.find(refusal.sentence), std::string::npos) << result.errors;
    }

    static Result setRaw(const std::string &text)
    {
        Command command(kelpDevice({"pps", "set", "--raw", "/a"}));
        command.writeInput(text);
        return command.finish();
    }
};

TEST_F(Pps, AValueIsPublishedAsWhatItLooksLike)
{
    struct Row {
        std::string argument;
        std::string line;
        std::string value;
    };
    const Row rows[] = {
        {"v=true", "v:b:true", "true"},
        {"v=True", "v::True", "True"},
        {"v=-5", "v:n:-5", "-5"},
        {"v=1.50", "v:n:1.50", "1.5"},
        {"v=9007199254740993", "v:n:9007199254740993", "9007199254740993"},
        {"v=0041", "v::0041", "0041"}, // no number of JSON
        {"v=5 ", "v::5 ", "5 "},
        {"v=", "v::", ""},
        {"v=null", "v::null", "null"},
        {"v=a=b:c", "v::a=b:c", "a=b:c"},
        {"v=two\nlines", "v:c:two\\nlines", "two\nlines"},
        {"v=[1,\n{\"k\":\"\\n\"}]", "v:json:[1, {\"k\":\"\\n\"}]", "[1,{\"k\":\"\\n\"}]"},
        {"v=[1,", "v::[1,", "[1,"},
        {"v::5", "v::5", "5"},
        {"v:json:null", "v:json:null", "null"},
        {"v:b64:aGk=", "v:b64:aGk=", "hi"},
    };
    for (const Row &row : rows) {
        done({"set", "/a", row.argument});
        EXPECT_EQ(done({"get", "/a"}), "@a\n" + row.line + '\n');
        EXPECT_EQ(done({"get", "/a", "v"}), row.value + '\n');
    }
    done({"set", "/pps/a", "w=2", "--delete", "v", "f=2.0"});
    EXPECT_EQ(done({"get", "a", "--json"}), "{\"name\":\"@a\",\"attributes\":{\"w\":2,\"f\":2.0}}\n");
}

TEST_F(Pps, ARawTextIsTakenWholeOrNotAtAll)
{
    EXPECT_EQ(setRaw("@a\nx:n:1\ny::two\n").exitCode, 0);
    for (const std::string &text : {std::string("x:n:2\nx:n:three\n"), std::string("x:n:2"),
                                    std::string("@b\nx:n:2\n"), std::string("x:n:2\0\n", 7)}) {
        const Result refused = setRaw(text);
        EXPECT_EQ(refused.exitCode, 1) << text;
        EXPECT_NE(refused.errors.find("nothing was written to /a"), std::string::npos) << refused.errors;
    }
    const Result tooLarge = Command::run(
        {"sh", "-c", "head -c 1000000 /dev/zero | \"$0\" pps set --raw /a", KELP_DEVICE_PROGRAM});
    EXPECT_NE(tooLarge.errors.find("larger than the device's largest object"), std::string::npos);

    EXPECT_EQ(done({"get", "/a"}), "@a\nx:n:1\ny::two\n");
}

TEST_F(Pps, WhatCannotBeDoneIsSaidWithWhatToDo)
{
    done({"set", "/d/a", "x=1"});
    const Refusal refusals[] = {
        {{"get", "/nix"}, 1, "there is no object /nix: `kelp-device pps ls`"},
        {{"get", "/d"}, 1, "/d is a directory: `kelp-device pps ls /d`"},
        {{"get", "/d/a/b"}, 1, "a part of /d/a/b is an object"},
        {{"get", "/d/a", "y"}, 1, "/d/a has no attribute \"y\""},
        {{"get", "/d/.all"}, 2, "stands for many objects"},
        {{"get", "/d/a?delta"}, 2, "leave the ? and what follows out"},
        {{"set", "/nix", "x=1", "--existing"}, 1, "there is no object /nix"},
        {{"set", "/d/..", "x=1"}, 1, "no object can have the path"},
        {{"set", "/d/new", "x"}, 2, "\"x\" sets nothing: give NAME=VALUE"},
        {{"set", "/d/new", "x:5"}, 2, "is no line NAME:ENCODING:VALUE"},
        {{"set", "/d/new", "@x=1"}, 2, "no attribute can have the name \"@x\""},
        {{"set", "/d/new", "--delete", "-x"}, 2, ""},
        {{"set", "/d/a", "x:n:one"}, 1, "a line is malformed"},
        {{"set", "/" + std::string(256, 'x')}, 1, "is too long"},
        {{"set", "/d/a", "x=1", "--raw"}, 2, "excludes"},
        {{"watch", "/nix"}, 1, "there is no object /nix"},
        {{"watch", "/d", "--count", "0"}, 2, "--count"},
        {{"ls", "/nix"}, 1, "is no directory of objects"},
        {{"rm", "/d"}, 1, "/d is a directory"},
        {{"ls", "--device", "/nix"}, 3, "there is no such directory"},
        {{"get", "/d/a", "--device", "/nix"}, 3, "there is no such directory"},
        {{}, 2, "what to do?"},
    };
    for (const Refusal &refusal : refusals) {
        expectRefusal(refusal);
    }
    EXPECT_EQ(done({"ls", "/d"}), "a\n"); // nothing was made on the way
}

TEST_F(Pps, ADirectoryIsListedAndItsObjectsAreDeleted)
{
    for (const char *path : {"/d/b", "/d/a", "/d/e/f"}) {
        done({"set", path, "x=1"});
    }

    EXPECT_NE(("\n" + done({"ls"})).find("\nd/\n"), std::string::npos);
    EXPECT_EQ(done({"ls", "/pps/d/"}), "a\nb\ne/\n");
    const std::string rows = done({"ls", "-l", "/d"});
    EXPECT_NE(rows.find("  9  a\n"), std::string::npos) << rows; // the size of "@a\nx:n:1\n"
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 3);
    EXPECT_EQ(done({"ls", "--json", "/d"}).find("{\"type\":\"object\",\"name\":\"a\","), 0U);

    const Result result = Command::run(kelpDevice({"pps", "rm", "/d/a", "/d/nix", "/d/b"}));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(done({"ls", "/d"}), "e/\n"); // one that is not there does not keep the others
}

TEST_F(Pps, AnObjectIsWatchedUntilItIsDeleted)
{
    done({"set", "/d/a", "x=1", "y=2"});
    Command watch(kelpDevice({"pps", "watch", "/d/a"}));
    Command whole(kelpDevice({"pps", "watch", "/d/a", "--whole", "--count", "2"}));
    Command json(kelpDevice({"pps", "watch", "/d/a", "--json"}));
    watch.awaitLine("y:n:2");
    whole.awaitLine("y:n:2");
    EXPECT_EQ(json.awaitLine("{"), "name\":\"@a\",\"attributes\":{\"x\":1,\"y\":2},\"flags\":[],"
                                   "\"created\":[],\"deleted\":[]}");

    done({"set", "/d/a", "z=3", "--delete", "x"});
    EXPECT_EQ(json.awaitLine("{"), "name\":\"@a\",\"attributes\":{\"z\":3},\"flags\":[],"
                                   "\"created\":[\"z\"],\"deleted\":[\"x\"]}");
    watch.awaitLine("+z:n:3");
    const Result ended = whole.finish();
    EXPECT_EQ(ended.exitCode, 0);
    EXPECT_EQ(std::count(ended.output.begin(), ended.output.end(), '@'), 2);
    EXPECT_NE(ended.output.rfind("\ny:n:2\n"), ended.output.find("\ny:n:2\n")); // once more

    done({"rm", "/d/a"});
    const Result deleted = watch.finish();
    EXPECT_EQ(deleted.exitCode, 0) << deleted.errors;
    EXPECT_TRUE(deleted.output.ends_with("\n-@a\n")) << deleted.output;
    EXPECT_NE(json.awaitLine("{").find("\"flags\":[\"deleted\"]"), std::string::npos);
    EXPECT_EQ(json.finish().exitCode, 0);
}

TEST_F(Pps, ADirectoryIsWatchedWhateverComesAndGoesInIt)
{
    done({"set", "/d/a", "x=1"});
    Command watch(kelpDevice({"pps", "watch", "/pps/d/"}));
    watch.awaitLine("x:n:1");

    done({"rm", "/d/a"});
    watch.awaitLine("-@a");
    done({"set", "/d/e/b", "x=2"});
    EXPECT_EQ(watch.awaitLine("+@e"), "b");
    const Result timedOut = Command::run(kelpDevice({"pps", "watch", "/d", "--timeout", "0"}));
    EXPECT_EQ(timedOut.exitCode, 124);
    EXPECT_NE(timedOut.errors.find("has not changed as often in that time"), std::string::npos);

    pid_t device = 0;
    std::ifstream(home() + "/lock") >> device;
    ASSERT_EQ(::kill(device, SIGKILL), 0);
    const Result gone = watch.finish();
    EXPECT_EQ(gone.exitCode, 3);
    EXPECT_NE(gone.errors.find("the device went away"), std::string::npos) << gone.errors;
}

} // namespace kelp::test
