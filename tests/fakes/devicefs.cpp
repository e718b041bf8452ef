// SPDX-License-Identifier: Apache-2.0
// The C functions of devicefs.h on the recording platform: noted, and without an answer of the test's done by the host.
// A call that the test has answered does nothing else.

#include "Recorder.h"

#include <devicefs/devicefs.h>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kelp::test;

namespace {

std::string octal(mode_t mode)
{
    std::ostringstream text;
    text << std::oct << std::showbase << mode;
    return text.str();
}

int detach(int fd)
{
    const int inert = ::eventfd(0, EFD_CLOEXEC);
    const int result = ::dup3(inert, fd, O_CLOEXEC);
    ::close(inert);
    return result == fd ? 0 : -1;
}

std::int64_t sizeOf(const char *path)
{
    struct stat status;
    return ::stat(path, &status) == 0 ? status.st_size : -1;
}

} // namespace

// A function: its parameters, what is noted of them, and the host's way to do it.
#define CALL(type, name, parameters, host, ...)                                                              \
    type name parameters                                                                                     \
    {                                                                                                        \
        const std::optional<std::int64_t> answer = note(#name, listed(__VA_ARGS__), true);                   \
        return answer ? static_cast<type>(*answer) : host;                                                   \
    }
CALL(int, devicefs_open, (const char *path, int flags, mode_t mode), ::open(path, flags | O_CLOEXEC, mode),
     quoted(path), flags, octal(mode))
CALL(int, devicefs_close, (int fd), ::close(fd), fd)
CALL(int, devicefs_detach, (int fd), detach(fd), fd)
CALL(ssize_t, devicefs_read, (int fd, void *buffer, size_t size), ::read(fd, buffer, size), fd, size)
CALL(ssize_t, devicefs_write, (int fd, const void *data, size_t size), ::write(fd, data, size), fd,
     quoted(std::string(static_cast<const char *>(data), size)))
CALL(int, devicefs_fcntl, (int fd, int command, int argument), ::fcntl(fd, command, argument), fd, command,
     argument)
CALL(long, devicefs_fpathconf, (int fd, int name), ::fpathconf(fd, name), fd, name)
CALL(int, devicefs_unlink, (const char *path), ::unlink(path), quoted(path))
CALL(int, devicefs_access, (const char *path, int mode), ::access(path, mode), quoted(path), mode)
CALL(std::int64_t, devicefs_size, (const char *path), sizeOf(path), quoted(path))
