// SPDX-License-Identifier: Apache-2.0
// kelp-device run: what the application sees, what comes back, and what is left behind, which is nothing.

#include "Journey.h"

#include <navigator/navigator.h>

#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

namespace kelp::test {

namespace {

std::vector<std::string> runOf(std::vector<std::string> application, std::vector<std::string> options = {})
{
    options.insert(options.begin(), "run");
    options.push_back("--");
    options.insert(options.end(), application.begin(), application.end());
    return kelpDevice(options);
}

std::vector<std::string> shell(const std::string &script)
{
    return {"sh", "-c", script};
}

} // namespace

class Run : public Journey
{
};

TEST_F(Run, PassesOnHowTheApplicationEnded)
{
    const std::string plain = folder() + "/plain";
    std::ofstream(plain) << "no program\n";
    struct Row {
        std::vector<std::string> application;
        int exitCode;
    };
    const Row rows[] = {
        {shell("exit 0"), 0},
        {shell("exit 7"), 7},
        {shell("kill -TERM $$"), 143},
        {shell("kill -PIPE $$; exit 1"), 141}, // ignored in the device only
        {{plain}, 126},
        {{folder()}, 126},
        {{folder() + "/missing"}, 127},
        {{"kelp-no-such-program"}, 127},
    };

    for (const Row &row : rows) {
        const Result result = Command::run(runOf(row.application), {{"PATH", "/usr/bin:/bin"}});
        EXPECT_EQ(result.exitCode, row.exitCode) << row.application.back() << ": " << result.errors;
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors.empty(), row.exitCode != 126 && row.exitCode != 127) << result.errors;
    }
    std::filesystem::remove(plain);
    EXPECT_TRUE(std::filesystem::is_empty(folder())); // every device took its directory with it
}

TEST_F(Run, GivesTheApplicationItsInputItsOutputAndTheDevice)
{
    Command command(runOf(shell("cat; ls \"$KELP_DEVICE\""), {"--trace"}));
    command.writeInput("what goes in\n");

    const Result result = command.finish();

    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "what goes in\nlock\nsocket\n");
    EXPECT_NE(result.errors.find("device started in"), std::string::npos); // the trace
}

TEST_F(Run, HearsOfTheEndAlsoWhereItsStarterHadSignalsBlocked)
{
    std::vector<std::string> command = {"env", "--block-signal=CHLD", "--block-signal=TERM"};
    const std::vector<std::string> run = runOf(shell("exit 7"));
    command.insert(command.end(), run.begin(), run.end());

    EXPECT_EQ(Command::run(command).exitCode, 7);
}

TEST_F(Run, RefusesWrongUsage)
{
    const std::vector<std::vector<std::string>> rows = {
        {},
        {"no-such-verb"},
        {"run"},
        {"run", "--"},
        {"run", "sh"},
        {"run", "--no-such-option", "--", "true"},
        {"run", "--grace", "nan", "--", "true"},
        {"run", "--grace", "-1", "--", "true"},
        {"run", "--screen", "768", "--", "true"},
        {"start", "--screen", "0x1"},
        {"start", "--theme", "grey"},
        {"start", "--limit", "objects"},
        {"start", "--limit", "objects=15"},
        {"start", "--limit", "no-such-limit=100"},
        {"event", "rotate"},
        {"status", "extra"},
        {"status", "--", "true"},
        {"event"},
        {"event", "no-such-event"},
        {"event", "low-memory"},
        {"event", "pool", "--no-such-option", "x"},
        {"fail", "set-badge"},
        {"fail", "no-such-request", "EPERM"},
        {"fail", "set-badge", "ENOSUCH"},
        {"fail", "set-badge", "-1"},
        {"fail", "set-badge", "EPERM", "--times", "0"},
    };

    for (const auto &row : rows) {
        const Result result = Command::run(kelpDevice(row));
        EXPECT_EQ(result.exitCode, 2) << result.errors;
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.errors, "");
    }
}

TEST_F(Run, BoundsWhatItsClientsTakeUp)
{
    const Result result = Command::run(
        runOf({"sh", "-c", "printf 'v::%20000s\\n' x | \"$0\" pps set --raw /a", KELP_DEVICE_PROGRAM},
              {"--limit", "descriptors=8", "--limit", "object-bytes=16384"}));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.errors.find("larger than the device's largest object"), std::string::npos)
        << result.errors;
}

TEST_F(Run, ReportsADeviceThatCannotBeSetUp)
{
    const Result noDirectory = Command::run(runOf({"true"}, {"--device", folder() + "/a/b"}));
    EXPECT_EQ(noDirectory.exitCode, 125) << noDirectory.errors;

    const Result noTrace = Command::run(runOf({"true"}, {"--trace=" + folder() + "/a/b"}));
    EXPECT_EQ(noTrace.exitCode, 125) << noTrace.errors;

    const Result noTerminal = Command::run(runOf({"true"}, {"--terminal"}));
    EXPECT_EQ(noTerminal.exitCode, 125) << noTerminal.errors;
}

TEST_F(Run, AnInterruptAsksTheApplicationToExit)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        Command command(runOf({CLIENT_PROGRAM, "obey"}));
        command.awaitLine("ready");

        command.signal(number);

        command.awaitLine("event " + std::to_string(NAVIGATOR_EXIT));
        EXPECT_EQ(command.finish().exitCode, 5) << number;
    }
}

TEST_F(Run, AnApplicationThatOverstaysIsEnded)
{
    Command patient(runOf({CLIENT_PROGRAM, "stubborn"}, {"--grace", "0.05"}));
    patient.awaitLine("ready");
    patient.signal(SIGTERM);
    EXPECT_EQ(patient.finish().exitCode, 128 + SIGKILL);

    Command impatient(runOf({CLIENT_PROGRAM, "stubborn"}, {"--grace", "86400"}));
    impatient.awaitLine("ready");
    impatient.signal(SIGINT);
    impatient.awaitLine("event " + std::to_string(NAVIGATOR_EXIT));
    impatient.signal(SIGINT); // once more
    EXPECT_EQ(impatient.finish().exitCode, 128 + SIGKILL);

    // The application has gone, but what it was started from lingers.
    Command lingering(
        runOf({"sh", "-c", "\"$0\" obey; echo after; sleep 86400", CLIENT_PROGRAM}, {"--grace", "86400"}));
    lingering.awaitLine("ready");
    lingering.signal(SIGINT);
    lingering.awaitLine("after");
    lingering.signal(SIGINT); // once more
    EXPECT_EQ(lingering.finish().exitCode, 128 + SIGKILL);

    // Never became an application: there is nothing to wait for.
    Command stranger(runOf(shell("trap 'exit 9' TERM; sleep 86400 & echo here; wait"), {"--grace", "86400"}));
    stranger.awaitLine("here");
    stranger.signal(SIGINT);
    EXPECT_EQ(stranger.finish().exitCode, 9);
}

TEST_F(Run, BuriesOrphansAndLeavesNobodyBehind)
{
    // A grandchild whose parent ends first, and ends itself; then one that would stay, in a session of its own.
    Command command(runOf(shell("(sh -c 'echo orphan $$' &); setsid sleep 86400 & echo left $!; read end")));
    const pid_t left = std::stoi(command.awaitLine("left"));
    pid_t orphan = 0;
    {
        Command again(runOf(shell("(sh -c 'echo orphan $$' &); read end")));
        orphan = std::stoi(again.awaitLine("orphan"));
        eventually([&] { return !processExists(orphan); }); // an unburied one would still exist
        EXPECT_EQ(again.finish().exitCode, 1);              // of read, at the end of its input
    }
    EXPECT_TRUE(processExists(left));

    EXPECT_EQ(command.finish().exitCode, 1);

    EXPECT_FALSE(processExists(left));
}

TEST_F(Run, AKilledApplicationIsGoneThoughItsChildKeepsTheConnection)
{
    const std::string device = folder() + "/d";
    ASSERT_EQ(held({"start", "--device", device}), "KELP_DEVICE=" + device + "; export KELP_DEVICE;\n");
    Command application({CLIENT_PROGRAM, "share"}, {{"KELP_DEVICE", device}});
    const pid_t child = std::stoi(application.awaitLine("child"));
    application.awaitLine("ready");
    EXPECT_NE(held({"status", "--device", device}).find("applications: 1"), std::string::npos);

    application.signal(SIGKILL);

    eventually([&] {
        return held({"status", "--device", device}).find("applications: 0") != std::string::npos;
    });
    EXPECT_TRUE(processExists(child));
    EXPECT_EQ(::kill(child, SIGKILL), 0);
    EXPECT_EQ(application.finish().exitCode, 128 + SIGKILL);
    held({"stop", "--device", device});
}

// Runs kelp-device on a terminal of its own, types, and returns what appears.
std::string typeInto(const std::vector<std::string> &command, const std::string &typed)
{
    const link::UniqueFd keyboard(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!keyboard || ::grantpt(keyboard.get()) != 0 || ::unlockpt(keyboard.get()) != 0) {
        return "no terminal";
    }
    const std::vector<char *> arguments = pointersTo(command);
    const std::string name = ::ptsname(keyboard.get());
    const pid_t child = ::fork();
    if (child == 0) {
        ::setsid();
        const int terminal = ::open(name.c_str(), O_RDWR); // becomes the session's
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::dup2(terminal, standard);
        }
        ::close(terminal);
        ::execv(arguments[0], arguments.data());
        ::_exit(99);
    }
    (void)!::write(keyboard.get(), typed.data(), typed.size());
    std::string shown;
    char part[256];
    pollfd appearing{keyboard.get(), POLLIN, 0};
    while (::poll(&appearing, 1, static_cast<int>(std::chrono::milliseconds(WAIT_TIME).count())) > 0) {
        const ssize_t length =
            ::read(keyboard.get(), part, sizeof part); // fails once nobody has the terminal
        if (length <= 0) {
            break;
        }
        shown.append(part, static_cast<std::size_t>(length));
    }
    (void)::kill(child, SIGKILL); // has ended already where all is well
    (void)::waitpid(child, nullptr, 0);
    return shown;
}

TEST_F(Run, TheTerminalIsTheApplicationsOnlyWhereThatWasAsked)
{
    const std::vector<std::string> reader = shell("read line; echo \"got <$line>\"");

    EXPECT_NE(typeInto(runOf(reader), "word\n").find("got <>"), std::string::npos);
    EXPECT_NE(typeInto(runOf(reader, {"--terminal"}), "word\n").find("got <word>"), std::string::npos);
    // Ctrl-Z: no shell stands above that could let the device go on, so it does, and the application with it.
    EXPECT_NE(typeInto(runOf(reader, {"--terminal"}), "\x1aword\n").find("got <word>"), std::string::npos);
}

} // namespace kelp::test
