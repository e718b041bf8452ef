// SPDX-License-Identifier: Apache-2.0
// Whole messages over the device's socket, with descriptors, and where the socket lies.

#include "platform/link/Socket.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

using namespace kelp::link;

namespace {

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
    Pipe()
    {
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        readEnd.reset(ends[0]);
        writeEnd.reset(ends[1]);
    }
    bool isOpenForWriting() const // somewhere
    {
        pollfd end{readEnd.get(), 0, 0};
        return ::poll(&end, 1, 0) == 0;
    }
};

class Socket : public testing::Test
{
protected:
    Socket() { EXPECT_EQ(socketPair(near, far), 0); }

    int receive(std::size_t size = 64)
    {
        std::string buffer(size, '?');
        std::size_t length = 0;
        const int error = receiveMessage(far.get(), buffer.data(), size, length, passed, MSG_DONTWAIT);
        text = error ? "" : buffer.substr(0, length);
        return error;
    }

    // More descriptors with one message than sendMessage() sends.
    void sendWithDescriptors(const std::vector<int> &descriptors)
    {
        std::vector<char> control(CMSG_SPACE(descriptors.size() * sizeof(int)));
        char byte = 'x';
        iovec part{&byte, 1};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
        cmsghdr *rights = CMSG_FIRSTHDR(&header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(descriptors.size() * sizeof(int));
        std::copy(descriptors.begin(), descriptors.end(), reinterpret_cast<int *>(CMSG_DATA(rights)));
        ASSERT_EQ(::sendmsg(near.get(), &header, 0), 1);
    }

    UniqueFd near;
    UniqueFd far;
    Passed passed; // what came with the last message
    std::string text;
};

} // namespace

TEST_F(Socket, keepsMessagesApartAndTellsOfTheEnd)
{
    ASSERT_EQ(sendMessage(near.get(), "first"), 0);
    ASSERT_EQ(sendMessage(near.get(), std::string(64, 'x')), 0);

    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(text, "first");
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(text, std::string(64, 'x')); // exactly as long as the buffer
    EXPECT_TRUE(passed.empty());
    EXPECT_EQ(receive(), EAGAIN);

    near.reset();
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(text, "");
    EXPECT_EQ(sendMessage(far.get(), "x"), EPIPE); // and no signal
}

TEST_F(Socket, losesAMessageThatDoesNotFitWithItsDescriptor)
{
    Pipe pipe;
    ASSERT_EQ(sendMessage(near.get(), std::string(65, 'x'), std::array{pipe.writeEnd.get()}), 0);
    ASSERT_EQ(sendMessage(near.get(), "next"), 0);
    pipe.writeEnd.reset();

    EXPECT_EQ(receive(), EMSGSIZE);
    EXPECT_TRUE(passed.empty());
    EXPECT_FALSE(pipe.isOpenForWriting());
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(text, "next");
}

TEST_F(Socket, passesADescriptorThatIsNotInherited)
{
    Pipe pipe;
    ASSERT_EQ(sendMessage(near.get(), "x", std::array{pipe.writeEnd.get()}), 0);
    pipe.writeEnd.reset();

    ASSERT_EQ(receive(), 0);

    ASSERT_EQ(passed.size(), 1u);
    EXPECT_TRUE(::fcntl(passed[0].get(), F_GETFD) & FD_CLOEXEC);
    EXPECT_EQ(::write(passed[0].get(), "y", 1), 1);
    EXPECT_TRUE(pipe.isOpenForWriting());
}

TEST_F(Socket, closesAllDescriptorsOfAMessageButTheFirstTwo)
{
    for (const std::size_t count : {2, 3, 8, 9, 100}) { // more than it makes room for, too
        std::vector<Pipe> pipes(count);
        std::vector<int> writeEnds;
        for (const Pipe &pipe : pipes) {
            writeEnds.push_back(pipe.writeEnd.get());
        }
        sendWithDescriptors(writeEnds);
        for (Pipe &pipe : pipes) {
            pipe.writeEnd.reset();
        }

        ASSERT_EQ(receive(), 0);

        ASSERT_EQ(passed.size(), 2u);
        EXPECT_TRUE(pipes[0].isOpenForWriting());
        EXPECT_TRUE(pipes[1].isOpenForWriting());
        for (std::size_t i = 2; i < count; ++i) {
            EXPECT_FALSE(pipes[i].isOpenForWriting()) << i << " of " << count;
        }
        passed.clear();
    }
}

TEST(SocketAddress, reachesADirectoryOfTheLongestPathAndRefusesALonger)
{
    std::string base = testing::TempDir() + "kelp-socket-XXXXXX";
    ASSERT_TRUE(::mkdtemp(base.data()));
    EXPECT_EQ(MAX_DIRECTORY_BYTES, 100u);
    ASSERT_LT(base.size() + 1, MAX_DIRECTORY_BYTES);
    const std::string longest = base + '/' + std::string(MAX_DIRECTORY_BYTES - base.size() - 1, 'd');
    ASSERT_EQ(::mkdir(longest.c_str(), 0700), 0);
    sockaddr_un address;
    ASSERT_EQ(socketAddress(longest, address), 0);
    const UniqueFd listening(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    ASSERT_EQ(::bind(listening.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listening.get(), 1), 0);

    UniqueFd connection;
    EXPECT_EQ(connectToDevice(longest, std::chrono::seconds(10), connection), 0);
    EXPECT_TRUE(connection);
    EXPECT_EQ(connectToDevice(longest + 'd', std::chrono::seconds(10), connection), ENAMETOOLONG);
    EXPECT_EQ(connectToDevice(base, std::chrono::seconds(10), connection), ENOENT);
    std::filesystem::remove_all(base);
}
