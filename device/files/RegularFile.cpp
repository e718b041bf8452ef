// SPDX-License-Identifier: Apache-2.0
// See RegularFile.h.

#include "RegularFile.h"

#include "MountType.h"
#include "platform/link/UniqueFd.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kelp::device {

namespace {

FileReading problem(const std::string &what)
{
    return {false, what, {}};
}

FileReading failure(const std::string &what, int error)
{
    return problem(what + ": " + std::generic_category().message(error));
}

FileReading missing(int error)
{
    FileReading reading = failure("cannot be opened", error);
    reading.isMissing = true;
    return reading;
}

// Appends what one read gives, at most so many bytes. Returns 0 at the end, -1 with errno, else their number.
ssize_t readPart(int descriptor, std::string &text, std::size_t most)
{
    const std::size_t before = text.size();
    text.resize(before + most);
    ssize_t length = 0;
    do {
        length = ::read(descriptor, text.data() + before, most);
    } while (length < 0 && errno == EINTR);
    text.resize(before + static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return length;
}

// What has been found, and nothing has yet been opened of it, is opened for reading.
link::UniqueFd reopen(const link::UniqueFd &found)
{
    const std::string path = "/proc/self/fd/" + std::to_string(found.get());
    return link::UniqueFd(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)); // a lease waits else
}

FileReading readText(const link::UniqueFd &file, std::size_t mostBytes)
{
    constexpr std::size_t PART_BYTES = 16'384; // the size that the file claims is not to be trusted
    FileReading reading;
    ssize_t length = 0;
    while ((length = readPart(file.get(), reading.text, PART_BYTES)) > 0) {
        if (reading.text.size() > mostBytes) {
            return problem("has more than " + std::to_string(mostBytes) + " bytes");
        }
    }
    return length < 0 ? failure("cannot be read", errno) : reading;
}

// found: a path's place (O_PATH).
FileReading readFound(const link::UniqueFd &found, std::size_t mostBytes)
{
    struct stat status {
    };
    if (::fstat(found.get(), &status) != 0) {
        return failure("cannot be examined", errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return problem("is no regular file");
    }
    const link::UniqueFd file = reopen(found);
    return file ? readText(file, mostBytes) : failure("cannot be opened", errno);
}

// The place of a name that leads nowhere but below the directory, on the same file system.
link::UniqueFd findBelow(const link::UniqueFd &directory, const std::string &name)
{
    open_how how{};
    how.flags = O_PATH | O_CLOEXEC;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_XDEV | RESOLVE_NO_MAGICLINKS;
    return link::UniqueFd(static_cast<int>(::syscall(SYS_openat2, directory.get(), name.c_str(), &how,
                                                     sizeof how))); // the C library has no function
}

FileReading notFoundBelow(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return missing(error);
    case EXDEV:
        return problem("leads out of the working directory or onto another file system");
    case ENOSYS:
    case EPERM:
        return problem("is not looked for: the system lacks openat2(2), or a sandbox forbids it");
    default:
        return failure("cannot be opened", error);
    }
}

FileReading withoutDirectory(int error)
{
    const bool isOutOfReach = error == ENOENT || error == ESRCH || error == EACCES || error == EPERM;
    return isOutOfReach ? missing(error) : failure("cannot be reached", error);
}

} // namespace

FileReading readRegularFile(const std::string &path, std::size_t mostBytes)
{
    const link::UniqueFd found(::open(path.c_str(), O_PATH | O_CLOEXEC));
    if (!found) {
        return errno == ENOENT || errno == ENOTDIR ? missing(errno) : failure("cannot be opened", errno);
    }
    return readFound(found, mostBytes);
}

FileReading readFileOfProcess(int processId, const std::string &name, std::size_t mostBytes)
{
    // The link leads straight to the directory, without a question to its file system.
    const std::string path = "/proc/" + std::to_string(processId) + "/cwd";
    const link::UniqueFd directory(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!directory) {
        return withoutDirectory(errno);
    }
    const std::string type = mountType(directory.get());
    if (type.empty() || mayNotAnswer(type)) {
        return problem("is not looked for: the working directory lies on " +
                       (type.empty() ? "a mount that only the process sees"
                                     : "a file system that need not answer (" + type + ')'));
    }
    const link::UniqueFd found = findBelow(directory, name);
    return found ? readFound(found, mostBytes) : notFoundBelow(errno);
}

} // namespace kelp::device
