// SPDX-License-Identifier: Apache-2.0
// The C functions of devicefs.h: each finds out whether it is about an object, about an entry of "/proc" that
// has the device's meaning, or about a file of the host.

#include "DescriptorTable.h"
#include "ObjectPath.h"
#include "ProcEntry.h"
#include "objects.h"
#include "platform/host/Result.h"

#include <devicefs/devicefs.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kelp;
using namespace kelp::platform;
using Kind = link::PathCall::Kind;

constexpr int FAILURE = -1; // the result of these functions
static_assert(TARN_FAILURE == FAILURE);

namespace {

// The object open under a number; errors of it are the caller's.
std::shared_ptr<ObjectDescriptor> objectOf(int fd)
{
    return DescriptorTable::instance().find(fd);
}

int errnoOf(long result)
{
    return result < 0 ? errno : 0;
}

// Puts a descriptor that is never ready, and that nobody can read, in the place of what is open under a number.
int replaceByInert(int fd)
{
    const link::UniqueFd inert(::epoll_create1(EPOLL_CLOEXEC));
    if (!inert || ::dup3(inert.get(), fd, O_CLOEXEC) < 0) {
        return errno;
    }
    return 0;
}

} // namespace

int devicefs_open(const char *path, int flags, mode_t mode)
{
    int fd = -1;
    const int result = resultOf([&] {
        if (!path) {
            return EFAULT;
        }
        if (const auto object = objectPath(path)) {
            return openObject(*object, flags, mode, fd);
        }
        fd = ::open(path, flags, mode);
        const int error = errnoOf(fd);
        DescriptorTable::instance().forget(fd);
        return error;
    });
    return result == TARN_SUCCESS ? fd : result;
}

int devicefs_close(int fd)
{
    return resultOf([=] {
        const auto object = DescriptorTable::instance().take(fd);
        return errnoOf(::close(object ? object->end().release() : fd));
    });
}

int devicefs_detach(int fd)
{
    return resultOf([=] {
        if (::fcntl(fd, F_GETFD) < 0) {
            return EBADF;
        }
        if (const int error = replaceByInert(fd)) {
            return error;
        }
        if (const auto object = DescriptorTable::instance().take(fd)) {
            (void)object->end().release(); // the number stays open
        }
        return 0;
    });
}

ssize_t devicefs_read(int fd, void *buffer, size_t size)
{
    ssize_t length = -1;
    const int result = resultOf([&] {
        const auto object = objectOf(fd);
        if (!object) {
            length = ::read(fd, buffer, size);
            return errnoOf(length);
        }
        std::size_t copied = 0;
        const int error = object->read({static_cast<char *>(buffer), size}, copied);
        length = static_cast<ssize_t>(copied);
        return error;
    });
    return result == TARN_SUCCESS ? length : result;
}

ssize_t devicefs_write(int fd, const void *data, size_t size)
{
    ssize_t length = -1;
    const int result = resultOf([&] {
        const auto object = objectOf(fd);
        if (!object) {
            length = ::write(fd, data, size);
            return errnoOf(length);
        }
        length = static_cast<ssize_t>(size);
        return object->write({static_cast<const char *>(data), size});
    });
    return result == TARN_SUCCESS ? length : result;
}

int devicefs_fcntl(int fd, int command, int argument)
{
    int value = -1;
    const int result = resultOf([&] {
        const auto object = objectOf(fd);
        if (object && command == F_GETFL) {
            value = object->flags();
        } else if (object && command == F_SETFL) {
            object->setFlags(argument);
            value = 0;
        } else if (object && (command == F_DUPFD || command == F_DUPFD_CLOEXEC)) {
            return EINVAL;
        } else {
            value = ::fcntl(fd, command, argument);
        }
        return errnoOf(value);
    });
    return result == TARN_SUCCESS ? value : result;
}

long devicefs_fpathconf(int fd, int name)
{
    const auto object = name == DEVICEFS_PC_OBJECT_MAX ? objectOf(fd) : nullptr;
    return object ? object->objectMax() : ::fpathconf(fd, name);
}

int devicefs_unlink(const char *path)
{
    return resultOf([=] {
        if (!path) {
            return EFAULT;
        }
        const auto object = objectPath(path);
        return object ? callOnPath(Kind::Unlink, *object, 0) : errnoOf(::unlink(path));
    });
}

int devicefs_access(const char *path, int mode)
{
    return resultOf([=] {
        if (!path) {
            return EFAULT;
        }
        if (const auto object = objectPath(path)) {
            return callOnPath(Kind::Access, *object, mode);
        }
        const auto entry = ProcEntry::at(path);
        return entry ? entry->access(mode) : errnoOf(::access(path, mode));
    });
}

int64_t devicefs_size(const char *path)
{
    std::int64_t size = -1;
    const int result = resultOf([&] {
        if (!path) {
            return EFAULT;
        }
        if (const auto object = objectPath(path)) {
            return callOnPath(Kind::Size, *object, 0, &size);
        }
        if (const auto entry = ProcEntry::at(path)) {
            return entry->size(size);
        }
        struct stat file {
        };
        const int error = errnoOf(::stat(path, &file));
        size = file.st_size;
        return error;
    });
    return result == TARN_SUCCESS ? size : result;
}
