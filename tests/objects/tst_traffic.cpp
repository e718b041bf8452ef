// SPDX-License-Identifier: Apache-2.0
// Many clients at once: what they read adds up to the last state, whoever is slow, asleep or killed.
#include "ObjectsTest.h"

#include <filesystem>
#include <map>

#include <spawn.h>
#include <sys/wait.h>

namespace kelp::test {

namespace {

class Traffic : public ObjectsTest
{
};

// What a reader knows of one object, from the texts that it has read.
class Known
{
public:
    void apply(const std::string &text)
    {
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = text.find('\n', begin);
            applyLine(text.substr(begin, end - begin));
            begin = end + 1;
        }
    }
    const std::map<std::string, std::string> &attributes() const { return _attributes; }

private:
    void applyLine(std::string line)
    {
        const bool isDeleted = line.front() == '-';
        line.erase(0, line.find_first_not_of("-+#*!"));
        const std::size_t colon = line.find(':');
        if (isDeleted) {
            _attributes.erase(line);
        } else if (colon != std::string::npos) {
            _attributes[line.substr(0, colon)] = line.substr(colon);
        }
    }

    std::map<std::string, std::string> _attributes;
};

// Reads whatever comes until the object says that it is done.
Known follow(const std::string &path)
{
    Known known;
    const Opened subscriber(path);
    while (!known.attributes().count("done")) {
        if (subscriber.polled(60000) == 0) {
            ADD_FAILURE() << path << " hears nothing any more";
            break;
        }
        const std::string text = subscriber.read();
        if (text == "nothing") {
            ADD_FAILURE() << path << " was readable and gave nothing";
            break;
        }
        known.apply(text);
    }
    return known;
}

// Sets, changes and deletes attributes of its own.
void publish(const std::string &path, int publisher, int changes)
{
    const Opened object(path, O_WRONLY);
    for (int i = 1; i <= changes; ++i) {
        const std::string name = 'p' + std::to_string(publisher) + '.' + std::to_string(i % 23);
        ASSERT_EQ(object.write(i % 7 == 0 ? '-' + name + '\n' : name + ":n:" + std::to_string(i) + '\n'), 0);
    }
}

std::size_t openDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// A client process that makes traffic until it is killed.
class Churn
{
public:
    Churn()
    {
        char program[] = CHURN_PROGRAM;
        char *arguments[] = {program, nullptr};
        EXPECT_EQ(::posix_spawn(&_pid, program, nullptr, nullptr, arguments, environ), 0);
    }
    ~Churn()
    {
        ::kill(_pid, SIGKILL);
        ::waitpid(_pid, nullptr, 0);
    }
    Churn(const Churn &) = delete;
    Churn &operator=(const Churn &) = delete;

private:
    pid_t _pid = 0;
};

} // namespace

TEST_F(Traffic, everySubscriberEndsAtTheLastStateAndNoDeltaIsLost)
{
    const Opened object("/pps/busy", O_RDWR | O_CREAT);
    std::vector<Known> known(4);
    std::vector<std::thread> subscribers;
    const char *const paths[] = {"/pps/busy", "/pps/busy?delta", "/pps/busy?delta,wait", "/pps/.all?delta"};
    for (std::size_t i = 0; i < known.size(); ++i) {
        subscribers.emplace_back([&known, &paths, i] { known[i] = follow(paths[i]); });
    }
    std::vector<std::thread> publishers;
    for (int publisher = 0; publisher < 3; ++publisher) {
        publishers.emplace_back([publisher] { publish("/pps/busy", publisher, 1500); });
    }
    for (std::thread &publisher : publishers) {
        publisher.join();
    }
    ASSERT_EQ(object.write("done:b:true\n"), 0);
    for (std::thread &subscriber : subscribers) {
        subscriber.join();
    }

    Known last;
    last.apply(object.read());
    EXPECT_GT(last.attributes().size(), 40u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(known[i].attributes(), last.attributes()) << paths[i];
    }
    for (const auto &[name, value] : last.attributes()) { // among those of other objects
        EXPECT_EQ(known[3].attributes().at(name), value);
    }
}

TEST_F(Traffic, subscriberThatSleepsThroughAHundredThousandChangesReadsTheLastStateOnce)
{
    const Opened publisher("/pps/fast", O_WRONLY | O_CREAT);
    const Opened whole("/pps/fast");
    const Opened delta("/pps/fast?delta");
    EXPECT_EQ(whole.read(), "@fast\n");
    EXPECT_EQ(delta.read(), "@fast\n");
    constexpr int LAST = 100000;
    for (int i = 1; i <= LAST; ++i) {
        ASSERT_EQ(publisher.write("n" + std::to_string(i % 10) + ":n:" + std::to_string(i) + '\n'), 0);
    }
    for (const Opened *sleeper : {&whole, &delta}) {
        Known known;
        known.apply(sleeper->read());
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(known.attributes().at("n" + std::to_string((LAST - i) % 10)),
                      ":n:" + std::to_string(LAST - i));
        }
        EXPECT_FALSE(sleeper->isReadable());
    }
}

TEST_F(Traffic, everyObjectBelowADirectoryArrivesInAnyNumberOfReads)
{
    const Opened all("/pps/many/.all", O_RDONLY | O_CREAT);
    ASSERT_LT(all.fd(), 0); // no such directory yet
    const std::string filler(3000, 'x');
    for (int i = 0; i < 100; ++i) { // more than one read can give
        const Opened object("/pps/many/" + std::to_string(i), O_WRONLY | O_CREAT);
        ASSERT_EQ(object.write("text::" + filler + '\n'), 0);
    }
    const Opened subscriber("/pps/many/.all");
    std::string text;
    int reads = 0;
    for (; subscriber.isReadable(); ++reads) {
        text += subscriber.read();
    }
    EXPECT_GT(reads, 4);
    EXPECT_EQ(text.size(), 100 * (filler.size() + 7) + 10 * 3 + 90 * 4);
    EXPECT_EQ(std::count(text.begin(), text.end(), '@'), 100);
}

TEST_F(Traffic, clientsKilledInTheMiddleOfEverythingLeaveNothingBehind)
{
    const Opened progress("/pps/churn/progress", O_RDWR | O_CREAT);
    (void)progress.read();
    const std::size_t before = openDescriptors();
    for (int round = 0; round < 5; ++round) {
        const Churn first;
        const Churn second;
        for (int i = 0; i < 20; ++i) { // both are at it
            ASSERT_NE(progress.polled(60000), 0);
            (void)progress.read();
        }
    }
    eventually([&] { return openDescriptors() <= before; });
    eventually([] { return devicefs_access("/pps/churn/passing", F_OK) != 0; }); // it was nopersist
    const Opened after("/pps/churn/progress", O_WRONLY);
    EXPECT_EQ(after.write("still::here\n"), 0);
    EXPECT_NE(progress.read().find("still::here\n"), std::string::npos);
}

} // namespace kelp::test
