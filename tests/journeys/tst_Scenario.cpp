// SPDX-License-Identifier: Apache-2.0
// kelp-device run --scenario and kelp-device wait: what holds, what does not, and the exit codes that tell.

#include "Journey.h"

#include <devicefs/devicefs.h>

#include <csignal>
#include <fstream>
#include <thread>

#include <fcntl.h>

namespace kelp::test {

namespace {

const std::vector<std::string> OBEYING = {CLIENT_PROGRAM, "obey"}; // exits with code 5
const std::string OBEY = std::string("'") + CLIENT_PROGRAM + "' obey";

std::vector<std::string> shell(const std::string &script)
{
    return {"sh", "-c", script};
}

bool says(const Result &result, const std::string &sentence)
{
    return result.errors.find(sentence) != std::string::npos;
}

} // namespace

class Scenario : public Journey
{
protected:
    Result run(const std::string &steps, const std::vector<std::string> &application,
               const std::vector<std::string> &options = {}) const
    {
        std::ofstream(folder() + "/s") << steps;
        std::vector<std::string> command = {"run", "--scenario", folder() + "/s"};
        command.insert(command.end(), options.begin(), options.end());
        command.push_back("--");
        command.insert(command.end(), application.begin(), application.end());
        return Command::run(kelpDevice(command));
    }
};

TEST_F(Scenario, TheExitCodeTellsHowItWent)
{
    struct Row {
        std::string steps;
        std::vector<std::string> application;
        int exitCode;
        std::string sentence;
        std::vector<std::string> options = {};
    };
    const Row rows[] = {
        {"wait active=true\nsend thumbnail\nexpect processState=background\nsend exit\nends 5\n", OBEYING, 0,
         " s  s:5: ends 5\n"},
        {"set /a v=1\nexpect pps /a v=1\nstart\nends 7\n", shell("exit 7"), 0, "s:4: ends 7"},
        {"ends 139", shell("kill -SEGV $$"), 0, "held"},
        // No application: ended at once.
        {"set /a v=1\nexpect pps /a v=1", shell("sleep 86400"), 0,
         "the program never became an application\n"},
        {"wait active=true\nexpect active=false\nsend exit", OBEYING, 1,
         "s:2: expect active=false: active is true\n"},
        {"wait active=true\nsend confirm", OBEYING, 1, "s:2: send confirm: "},
        {"wait active=true", OBEYING, 1, "the application ended with code 5, not 0"},
        {"wait active=true", shell("exit 3"), 1, "code 3, not 0; the program never became an application\n"},
        // The application came and went; what started it has the last word.
        {"wait processState=foreground\nsend exit\nwait gone", shell(OBEY + "; exit 3"), 1,
         "code 3, not 0\n"},
        {"wait processState=foreground\nsend exit\nwait gone",
         shell(OBEY + "; sleep 86400"),
         4,
         "ended by signal 15\n",
         {"--grace", "0.05"}},
        {"set /a v=1\nset /a/b v=1", OBEYING, 1, "s:2: set /a/b v=1: a part of /a/b is an object"},
        {"wait active=true\nwait windowState=thumbnail --timeout 0.1", OBEYING, 124,
         "s:2: wait windowState=thumbnail --timeout 0.1: windowState is fullscreen\n"},
        {"wait active=true\nwait windowState=thumbnail --timeout 0", OBEYING, 124,
         "windowState is fullscreen\n"},
        {"ends 0 --timeout 0.1", shell("sleep 86400"), 124, "the application has not ended"},
        {"start\njump\nends x", OBEYING, 2, "s:2: there is no step \"jump\""},
        {"wait active=true", shell("kill -SEGV $$"), 4, "the application was ended by signal 11"},
        {"wait active=true", {CLIENT_PROGRAM, "stubborn"}, 4, "ended by signal 9", {"--grace", "0.05"}},
    };
    for (const Row &row : rows) {
        const Result result = run(row.steps, row.application, row.options);
        EXPECT_EQ(result.exitCode, row.exitCode) << row.steps << ": " << result.errors;
        EXPECT_TRUE(says(result, row.sentence)) << row.steps << ": " << result.errors;
    }
    for (const char *steps : {"start", "wait active=true"}) {
        const Result missing = run(steps, {folder() + "/missing"});
        EXPECT_EQ(missing.exitCode, 127);
        EXPECT_TRUE(says(missing, "missing"));
        EXPECT_FALSE(says(missing, "s:1:")) << missing.errors; // no step has anything to do with it
    }
    EXPECT_EQ(Command::run(kelpDevice({"run", "--scenario", folder() + "/nix", "--", "true"})).exitCode, 2);
    EXPECT_EQ(Command::run(kelpDevice({"run", "--json", "--", "true"})).exitCode, 2);
}

TEST_F(Scenario, TheReportIsThereForProgramsToo)
{
    const Result result = run("wait active=true\nexpect active=false\n", OBEYING, {"--json"});

    EXPECT_TRUE(says(result, "{\"type\":\"step\",\"file\":\"s\",\"line\":1,\"step\":\"wait active=true\","
                             "\"result\":\"held\",\"seen\":\"\",\"seconds\":"));
    EXPECT_TRUE(says(result, "\"result\":\"failed\",\"seen\":\"active is true\""));
    EXPECT_TRUE(says(result, "{\"type\":\"end\",\"exitCode\":5,\"launches\":1,"));
}

class Wait : public Journey
{
protected:
    Wait() { held({"start"}); }

    static std::vector<std::string> wait(const std::vector<std::string> &condition)
    {
        std::vector<std::string> command = {"wait", "--timeout", "60"};
        command.insert(command.end(), condition.begin(), condition.end());
        return kelpDevice(command);
    }
};

TEST_F(Wait, EndsWhenItHolds)
{
    Command here(wait({"pps", "/d/a", "v=1"}));
    held({"pps", "set", "/d/a", "v=1"});
    EXPECT_EQ(here.finish().exitCode, 0);
    Command gone(wait({"no-pps", "/d/a"}));
    held({"pps", "rm", "/d/a"});
    EXPECT_EQ(gone.finish().exitCode, 0);

    Command thumbnail(wait({"windowState=thumbnail"}));
    Command requested(wait({"request", "set-badge", "--count", "2"}));
    Command refused(wait({"refused", "set-badge"}));
    {
        DoorClient client(home(), link::Role::Application);
        const link::UniqueFd events = client.openEvents();
        held({"fail", "set-badge", "EIO", "--times", "1"});
        for (int time = 0; time < 2; ++time) {
            link::Request request;
            request.code = link::RequestCode::SetBadge;
            (void)client.ask(request); // counts whatever the answer
        }
        held({"event", "thumbnail"});
        EXPECT_EQ(held({"wait", "windowState=thumbnail", "active=false"}), "");
        EXPECT_EQ(thumbnail.finish().exitCode, 0);
    }
    EXPECT_EQ(requested.finish().exitCode, 0);
    EXPECT_EQ(refused.finish().exitCode, 0);
    held({"wait", "gone"});
}

TEST_F(Wait, TakesInMoreThanOneReadTells)
{
    const std::string large(40'000, 'x');
    for (const char *path : {"/a", "/b", "/c"}) {
        held({"pps", "set", path, "v=" + large});
    }
    held({"pps", "set", "/z", "v=1"});

    held({"wait", "pps", "/z", "v=1", "--timeout", "0"});
}

TEST_F(Wait, GivesUpInTimeThoughThereIsSteadyNews)
{
    std::string numbers = "0"; // slow to read; each further write is quick
    while (numbers.size() < 50'000) {
        numbers += ",0";
    }
    held({"pps", "set", "/a", "numbers=[" + numbers + ']'});
    ::setenv("KELP_DEVICE", home().c_str(), 1);
    const int object = devicefs_open("/pps/a", O_WRONLY, 0);
    ASSERT_GE(object, 0);
    std::jthread writer([object](const std::stop_token &stop) {
        for (int round = 0; !stop.stop_requested(); ++round) {
            const std::string text = "v:n:" + std::to_string(round) + '\n';
            (void)devicefs_write(object, text.data(), text.size()); // there is another
        }
    });

    for (const char *timeout : {"0", "0.1"}) {
        const Result result = Command::run(kelpDevice({"wait", "pps", "/a", "v=-1", "--timeout", timeout}));
        EXPECT_EQ(result.exitCode, 124) << result.errors;
        const Result watch =
            Command::run(kelpDevice({"pps", "watch", "/a", "--whole", "--json", "--timeout", timeout}));
        EXPECT_EQ(watch.exitCode, 124) << watch.errors;
    }

    writer.request_stop();
    writer.join();
    EXPECT_EQ(devicefs_close(object), 0);
}

TEST_F(Wait, SaysWhatThereIsInstead)
{
    const Result timedOut = Command::run(kelpDevice({"wait", "active=true", "--timeout", "0.1"}));
    EXPECT_EQ(timedOut.exitCode, 124);
    EXPECT_TRUE(says(timedOut, "\"active=true\" did not hold within 0.1 s: no application runs"))
        << timedOut.errors;
    EXPECT_EQ(Command::run(kelpDevice({"wait"})).exitCode, 2);
    EXPECT_EQ(Command::run(kelpDevice({"wait", "active=yes"})).exitCode, 2);
    EXPECT_EQ(Command::run(kelpDevice({"wait", "gone", "--device", "/nix"})).exitCode, 3);

    Command broken(wait({"active=true"}));
    pid_t device = 0;
    std::ifstream(home() + "/lock") >> device;
    ASSERT_EQ(::kill(device, SIGKILL), 0);
    EXPECT_EQ(broken.finish().exitCode, 3);
}

} // namespace kelp::test
