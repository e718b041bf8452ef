// SPDX-License-Identifier: Apache-2.0
// The contract of devicefs.h, kept by the platform library and a real device together.
#include "ObjectsTest.h"

#include <atomic>
#include <deque>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelp::test {

namespace {

class Devicefs : public ObjectsTest
{
};

constexpr int MAKE = O_WRONLY | O_CREAT;

// Whether a thread of this process waits for something.
bool sleeps(pid_t thread)
{
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(status, line);
    return line.find(") S ") != std::string::npos;
}

} // namespace

TEST_F(Devicefs, opensWhatIsThereAndRefusesTheRestWithItsErrno)
{
    ASSERT_EQ(openError("/pps/a/object", MAKE), 0);
    struct {
        const char *path;
        int flags;
        int error;
    } const cases[] = {
        {"/pps/a/object", O_RDONLY, 0},
        {"/pps//a/object", O_RDWR, 0},
        {"/pps/a/object?delta,wait", O_RDONLY, 0},
        {"/pps/.all", O_RDONLY, 0},
        {"/pps/a/.all", O_RDONLY, 0},
        {"/pps/missing", O_RDONLY, ENOENT},
        {"/pps/a/object", MAKE | O_EXCL, EEXIST},
        {"/pps/a/object?never", O_RDONLY, EINVAL},
        {"/pps/a/object?delta", O_WRONLY, EINVAL},
        {"/pps/a", O_RDONLY, EISDIR},
        {"/pps", O_RDONLY, EISDIR},
        {"/pps/a/object/below", MAKE, ENOTDIR},
        {"/pps/.all", O_WRONLY, EACCES},
        {"/ppsx", O_RDONLY, ENOENT}, // the host's
    };
    for (const auto &one : cases) {
        EXPECT_EQ(openError(one.path, one.flags), one.error) << one.path;
    }
    EXPECT_EQ(openError("/pps/" + std::string(256, 'n'), MAKE), ENAMETOOLONG);
    EXPECT_EQ(openError("/pps/" + std::string(5000, 'n'), MAKE), ENAMETOOLONG);
    EXPECT_EQ(devicefs_open(nullptr, O_RDONLY, 0), -1);
    EXPECT_EQ(errno, EFAULT);
}

TEST_F(Devicefs, isReadableExactlyWhileAReadGivesData)
{
    const Opened publisher("/pps/battery", MAKE);
    const Opened whole("/pps/battery");
    const Opened delta("/pps/battery?delta");

    for (const Opened *subscriber : {&whole, &delta}) {
        EXPECT_TRUE(subscriber->isReadable());
        EXPECT_EQ(subscriber->read(), "@battery\n");
        EXPECT_FALSE(subscriber->isReadable());
        EXPECT_EQ(subscriber->read(), "nothing");
        EXPECT_FALSE(subscriber->isReadable());
    }
    EXPECT_EQ(publisher.write("level:n:87\ncharging:b:true\n"), 0);
    EXPECT_TRUE(whole.isReadable());
    EXPECT_EQ(whole.read(), "@battery\n+level:n:87\n+charging:b:true\n");
    EXPECT_EQ(publisher.write("level:n:88\n"), 0);
    EXPECT_EQ(publisher.write("-charging\n"), 0);
    EXPECT_EQ(whole.read(), "@battery\nlevel:n:88\n-charging\n");
    EXPECT_FALSE(whole.isReadable());
    EXPECT_TRUE(delta.isReadable());
    EXPECT_EQ(delta.read(), "@battery\n+level:n:88\n"); // all three changes in one
    EXPECT_FALSE(delta.isReadable());
    EXPECT_EQ(publisher.write("level:n:89\n"), 0);
    EXPECT_EQ(delta.read(), "@battery\nlevel:n:89\n");
    EXPECT_EQ(delta.read(), "nothing");

    EXPECT_EQ(publisher.read(), "EBADF");
    EXPECT_EQ(whole.write("a::b\n"), EBADF);
    EXPECT_EQ(publisher.write("no line"), EINVAL);
    EXPECT_EQ(publisher.write("@other\na::b\n"), EINVAL);
    EXPECT_EQ(publisher.write("a::" + std::string(65536, 'x') + '\n'), EMSGSIZE);
    EXPECT_EQ(publisher.write(""), 0);
}

TEST_F(Devicefs, textsOfAnySizeArriveAndASmallBufferGetsWholeLines)
{
    const Opened object("/pps/large", O_RDWR | O_CREAT);
    EXPECT_EQ(object.read(), "@large\n");
    for (const std::size_t size : {1000, 1300, 1400, 4096, 65000, 10}) {
        const std::string line = "text::" + std::string(size, 'x') + '\n';
        ASSERT_EQ(object.write(line), 0);
        ASSERT_EQ(object.read().substr(7), (size == 1000 ? "+" : "") + line);
    }
    ASSERT_EQ(object.write("number:n:1\nlast::end\n"), 0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(object.read(5), "EINVAL"); // and nothing is lost
        EXPECT_TRUE(object.isReadable());
    }
    EXPECT_EQ(object.read(40), "*@large\ntext::xxxxxxxxxx\n+number:n:1\n");
    EXPECT_FALSE(object.isReadable());
}

TEST_F(Devicefs, severalObjectsArriveWholeInSmallBuffersAndWhatIsGoneAgainIsNot)
{
    const Opened first("/pps/d/first", MAKE);
    const Opened all("/pps/d/.all");
    EXPECT_EQ(all.read(), "@first\n");
    const Opened second("/pps/d/second", MAKE);
    EXPECT_EQ(first.write("a::1\n"), 0);
    EXPECT_EQ(all.read(14), "+@second\n");
    EXPECT_TRUE(all.isReadable());
    EXPECT_EQ(all.read(14), "@first\n+a::1\n");
    EXPECT_FALSE(all.isReadable());

    {
        const Opened passing("/pps/d/passing", MAKE);
        EXPECT_TRUE(all.isReadable());
    }
    EXPECT_EQ(devicefs_unlink("/pps/d/passing"), 0);
    const std::string news = all.read();
    EXPECT_TRUE(news == "nothing" || news == "-@passing\n") << news;
    EXPECT_FALSE(all.isReadable());
    EXPECT_EQ(first.write("a::2\n"), 0);
    EXPECT_EQ(all.read(), "@first\na::2\n");
}

TEST_F(Devicefs, longTextsThatNobodyReadAreMadeAnewForTheirReader)
{
    const Opened publisher("/pps/long", MAKE);
    const Opened subscriber("/pps/long");
    const std::string filler = "filler::" + std::string(5000, 'x') + '\n';
    EXPECT_EQ(publisher.write(filler), 0);
    for (const char *value : {"1", "2", "3"}) {
        EXPECT_EQ(publisher.write("a::" + std::string(value) + '\n'), 0);
        EXPECT_TRUE(subscriber.isReadable());
    }
    EXPECT_EQ(subscriber.read(), "@long\n" + filler + "a::3\n");
    EXPECT_FALSE(subscriber.isReadable());
    EXPECT_EQ(publisher.write("a::4\n"), 0);
    EXPECT_EQ(subscriber.read(), "@long\n" + filler + "a::4\n");
}

TEST_F(Devicefs, waitingReadsWaitUnlessTheDescriptorIsNonBlocking)
{
    const Opened publisher("/pps/news", MAKE);
    const Opened waiting("/pps/news?wait");
    EXPECT_EQ(waiting.read(), "@news\n");
    EXPECT_EQ(devicefs_fcntl(waiting.fd(), F_GETFL, 0) & (O_ACCMODE | O_NONBLOCK), O_RDONLY);
    EXPECT_EQ(devicefs_fcntl(waiting.fd(), F_SETFL, O_NONBLOCK), 0);
    EXPECT_EQ(devicefs_fcntl(waiting.fd(), F_GETFL, 0) & O_NONBLOCK, O_NONBLOCK);
    EXPECT_EQ(waiting.read(), "EAGAIN");
    EXPECT_EQ(devicefs_fcntl(waiting.fd(), F_SETFL, 0), 0);
    EXPECT_EQ(devicefs_fcntl(waiting.fd(), F_DUPFD_CLOEXEC, 0), -1);

    std::thread first([&] { EXPECT_EQ(waiting.read(), "@news\n+a::1\n"); });
    EXPECT_EQ(publisher.write("a::1\n"), 0);
    first.join();

    Opened closed("/pps/news?wait");
    (void)closed.read();
    std::atomic<pid_t> reader = 0;
    std::thread last([&, fd = closed.fd()] {
        char byte = 0;
        reader = ::gettid();
        EXPECT_EQ(devicefs_read(fd, &byte, 1), -1);
        EXPECT_EQ(errno, EBADF);
    });
    eventually([&] { return reader != 0 && sleeps(reader); }); // a number that is closed earlier is another's
    closed.close();
    last.join();
}

TEST_F(Devicefs, pathsCanBeAskedAboutAndUnlinked)
{
    const Opened other("/pps/dir/other", MAKE);
    const Opened object("/pps/dir/object", O_RDWR | O_CREAT, 0600);
    EXPECT_EQ(object.write("a::1\n"), 0);
    EXPECT_EQ(devicefs_access("/pps/dir/object", R_OK | W_OK), 0);
    EXPECT_EQ(devicefs_access("/pps/dir", F_OK), 0);
    EXPECT_EQ(devicefs_size("/pps/dir/object"), static_cast<int>(sizeof "@object\na::1\n" - 1));
    EXPECT_EQ(devicefs_access("/pps/none", F_OK), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(devicefs_size("/pps/none"), -1);
    EXPECT_EQ(devicefs_fpathconf(object.fd(), DEVICEFS_PC_OBJECT_MAX), 65536);

    (void)object.read();
    EXPECT_EQ(devicefs_unlink("/pps/dir/object"), 0);
    EXPECT_EQ(object.read(), "-@object\n");
    EXPECT_FALSE(object.isReadable());
    EXPECT_EQ(object.write("a::2\n"), ESTALE);
    EXPECT_EQ(devicefs_unlink("/pps/dir/object"), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(devicefs_unlink("/pps/dir"), -1);
    EXPECT_EQ(errno, EISDIR);
}

TEST_F(Devicefs, hostPathsAreTheHostsOwn)
{
    std::string path = testing::TempDir() + "kelp-devicefs-XXXXXX";
    const int made = ::mkstemp(path.data());
    ASSERT_GE(made, 0);
    {
        const Opened file(path, O_RDWR);
        EXPECT_EQ(file.write("hello"), 0);
        EXPECT_EQ(devicefs_size(path.c_str()), 5);
        EXPECT_EQ(devicefs_access(path.c_str(), R_OK), 0);
        EXPECT_EQ(devicefs_fcntl(file.fd(), F_SETFL, O_NONBLOCK), 0);
        EXPECT_TRUE(::fcntl(file.fd(), F_GETFL) & O_NONBLOCK);
        EXPECT_EQ(devicefs_fpathconf(file.fd(), DEVICEFS_PC_OBJECT_MAX), -1);
        EXPECT_EQ(errno, EINVAL);
    }
    EXPECT_EQ(devicefs_unlink(path.c_str()), 0);
    EXPECT_EQ(devicefs_close(-1), -1);
    EXPECT_EQ(errno, EBADF);
    ::close(made);
}

TEST_F(Devicefs, serversAndClientsExchangeMessagesInOrder)
{
    const Opened server("/pps/calc?server", O_RDWR | O_CREAT);
    EXPECT_FALSE(server.isReadable());
    const Opened client("/pps/calc", O_RDWR);
    EXPECT_FALSE(client.isReadable());
    EXPECT_EQ(openError("/pps/calc?server", O_RDWR), EBUSY);

    EXPECT_EQ(client.write("msg::add\nid::1\n"), 0);
    EXPECT_EQ(client.write("msg::add\nid::2\n"), 0);
    EXPECT_EQ(server.read(), "+@calc.1\n");
    EXPECT_TRUE(server.isReadable()); // at once: the next one waits behind it
    EXPECT_EQ(server.read(), "@calc.1\nmsg::add\nid::1\n");
    EXPECT_TRUE(server.isReadable());
    EXPECT_EQ(server.read(), "@calc.1\nmsg::add\nid::2\n");
    EXPECT_FALSE(server.isReadable());

    EXPECT_EQ(server.write("@calc.1\nres::add\nid::1\n"), 0);
    EXPECT_EQ(client.read(), "@calc\nres::add\nid::1\n");
    EXPECT_EQ(server.write("@calc.9\nres::add\n"), ESTALE);
    int error = 0;
    for (int sent = 0; !error; ++sent) {
        ASSERT_LE(sent, 100);
        error = client.write("msg::more\n");
    }
    EXPECT_EQ(error, EAGAIN);
}

TEST_F(Devicefs, closingEndsNopersistAttributesAndAServer)
{
    const Opened subscriber("/pps/shown", O_RDONLY | O_CREAT);
    (void)subscriber.read();
    {
        const Opened publisher("/pps/shown?nopersist", O_WRONLY);
        EXPECT_EQ(publisher.write("here:b:true\n"), 0);
        EXPECT_EQ(subscriber.read(), "@shown\n+here:b:true\n");
    }
    EXPECT_EQ(subscriber.read(), "@shown\n-!here\n");

    Opened server("/pps/service?server", O_RDWR | O_CREAT);
    const Opened client("/pps/service", O_RDWR);
    server.close();
    EXPECT_EQ(client.read(), "-@service\n");
    EXPECT_EQ(client.write("msg::late\n"), ESTALE);
    EXPECT_EQ(openError("/pps/service"), ENOENT);
}

TEST_F(Devicefs, numbersThatAreDetachedOrClosedBehindItsBackHarmNobody)
{
    const Opened subscriber("/pps/shown", O_RDONLY | O_CREAT);
    (void)subscriber.read();
    const int publisher = devicefs_open("/pps/shown?nopersist", O_WRONLY, 0);
    ASSERT_EQ(devicefs_write(publisher, "a::1\n", 5), 5);
    EXPECT_EQ(devicefs_detach(publisher), 0);
    EXPECT_EQ(subscriber.read(), "@shown\n"); // set and gone again since the last read
    pollfd silent{publisher, POLLIN, 0};
    EXPECT_EQ(::poll(&silent, 1, 0), 0);
    EXPECT_EQ(devicefs_close(publisher), 0);
    EXPECT_EQ(devicefs_detach(publisher), -1);
    EXPECT_EQ(errno, EBADF);

    const int forgotten = devicefs_open("/pps/shown?nopersist", O_WRONLY, 0);
    ASSERT_EQ(devicefs_write(forgotten, "b::1\n", 5), 5);
    EXPECT_EQ(subscriber.read(), "@shown\n+b::1\n");
    ::close(forgotten); // not as it should be: the device notices all the same
    EXPECT_NE(subscriber.polled(10000), 0);
    EXPECT_EQ(subscriber.read(), "@shown\n-!b\n");
    std::deque<Opened> files; // the lowest free numbers first, of which the device has freed some as well
    do {
        files.emplace_back("/dev/null", O_RDWR);
    } while (files.back().fd() >= 0 && files.back().fd() < forgotten);
    EXPECT_EQ(files.back().fd(), forgotten);
    EXPECT_EQ(files.back().write("x"), 0); // the number is the file's
}

TEST_F(Devicefs, childOfAForkHasNoObjects)
{
    const Opened object("/pps/mine", O_RDWR | O_CREAT);
    const pid_t child = ::fork();
    if (child == 0) {
        char byte = 0;
        const bool refuses = devicefs_read(object.fd(), &byte, 1) == -1 && errno == EBADF &&
                             devicefs_write(object.fd(), "a::1\n", 5) == -1 && errno == EBADF;
        ::_exit(refuses && devicefs_close(object.fd()) == 0 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(object.read(), "@mine\n");
}

TEST_F(Devicefs, descriptorsEndWithTheDeviceAndTheNextDeviceServesNewOnes)
{
    Opened waiting("/pps/object?wait", O_RDWR | O_CREAT);
    EXPECT_EQ(waiting.read(), "@object\n");
    std::thread reader([&] { EXPECT_EQ(waiting.read(), "ECONNRESET"); });
    stopDevice();
    reader.join();
    EXPECT_NE(waiting.polled(0), 0);
    EXPECT_EQ(waiting.read(), "ECONNRESET");
    EXPECT_EQ(waiting.write("a::1\n"), ECONNRESET);
    EXPECT_EQ(openError("/pps/object"), ENOTCONN);

    start();
    const Opened fresh("/pps/object", O_RDWR | O_CREAT);
    EXPECT_EQ(fresh.write("a::2\n"), 0);
    EXPECT_EQ(fresh.read(), "@object\na::2\n");
    EXPECT_EQ(waiting.write("a::1\n"), ECONNRESET);
}

} // namespace kelp::test
