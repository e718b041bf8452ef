// SPDX-License-Identifier: Apache-2.0
// See RegularFile.h.

#include "RegularFile.h"

#include "platform/link/UniqueFd.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelp::device {

namespace {

FileReading problem(bool isReached, const std::string &what)
{
    return {isReached, what, {}};
}

FileReading failure(bool isReached, const std::string &what, int error)
{
    return problem(isReached, what + ": " + std::generic_category().message(error));
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

} // namespace

FileReading readRegularFile(const std::string &path, std::size_t mostBytes)
{
    // Without O_NONBLOCK the open itself would wait for a pipe's writer, or for the end of a lease.
    const link::UniqueFd file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) {
        return failure(false, "cannot be opened", errno);
    }
    struct stat found {
    };
    if (::fstat(file.get(), &found) != 0) {
        return failure(true, "cannot be examined", errno);
    }
    if (!S_ISREG(found.st_mode)) {
        return problem(true, "is no regular file");
    }
    constexpr std::size_t PART_BYTES = 16'384; // the size that the file claims is not to be trusted
    FileReading reading{true, {}, {}};
    ssize_t length = 0;
    while ((length = readPart(file.get(), reading.text, PART_BYTES)) > 0) {
        if (reading.text.size() > mostBytes) {
            return problem(true, "has more than " + std::to_string(mostBytes) + " bytes");
        }
    }
    return length < 0 ? failure(true, "cannot be read", errno) : reading;
}

} // namespace kelp::device
