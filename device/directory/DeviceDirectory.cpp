// SPDX-License-Identifier: Apache-2.0
// See DeviceDirectory.h.

#include "DeviceDirectory.h"

#include "DirectoryCheck.h"
#include "platform/link/Socket.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace kelp::device {

namespace {

constexpr char LOCK_NAME[] = "lock";

[[noreturn]] void fail(const std::string &path, const char *what, int error)
{
    throw DirectoryError(path + " cannot be " + what + " (" + std::generic_category().message(error) +
                         "): choose another directory with --device");
}

} // namespace

DeviceDirectory DeviceDirectory::at(const std::string &path)
{
    if (DirectoryCheck(path).isMissing && ::mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
        fail(path, "made", errno);
    }
    return DeviceDirectory(path, false);
}

DeviceDirectory DeviceDirectory::temporaryIn(const std::string &parent)
{
    std::string path = parent + "/kelp-device.XXXXXX";
    if (!::mkdtemp(path.data())) {
        fail(path, "made", errno);
    }
    try {
        return DeviceDirectory(path, true);
    } catch (const DirectoryError &) {
        (void)::rmdir(path.c_str()); // the error at hand is the one to tell
        throw;
    }
}

DeviceDirectory::DeviceDirectory(const std::string &path, bool isTemporary)
    : _path(path),
      _isTemporary(isTemporary)
{
    DirectoryCheck check(path);
    if (!check.refusal.empty()) {
        throw DirectoryError(check.refusal);
    }
    if (check.isMissing) {
        fail(path, "opened", ENOENT);
    }
    _directory = std::move(check.directory);
    lock();
    // The lock is ours: whoever made this socket has ended.
    if (::unlinkat(_directory.get(), link::SOCKET_NAME, 0) != 0 && errno != ENOENT) {
        fail(path + '/' + link::SOCKET_NAME, "removed", errno);
    }
}

DeviceDirectory::~DeviceDirectory()
{
    if (!_directory) {
        return;
    }
    // Through the descriptor, in case that another directory has taken this one's name. Nobody is left to be told of
    // a failure, and the next device removes a socket that stays.
    (void)::unlinkat(_directory.get(), link::SOCKET_NAME, 0);
    if (_isTemporary) {
        (void)::unlinkat(_directory.get(), LOCK_NAME, 0);
        (void)::rmdir(_path.c_str());
    }
}

void DeviceDirectory::lock()
{
    _lock.reset(
        ::openat(_directory.get(), LOCK_NAME, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (!_lock) {
        fail(_path + '/' + LOCK_NAME, "opened", errno);
    }
    int result = 0;
    do {
        result = ::flock(_lock.get(), LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result != 0 && errno == EWOULDBLOCK) {
        refuse();
    }
    if (result != 0) {
        fail(_path + '/' + LOCK_NAME, "locked", errno);
    }
    writeProcessNumber();
}

void DeviceDirectory::writeProcessNumber() const
{
    const std::string number = std::to_string(::getpid()) + '\n';
    if (::ftruncate(_lock.get(), 0) != 0 ||
        ::pwrite(_lock.get(), number.data(), number.size(), 0) != static_cast<ssize_t>(number.size())) {
        fail(_path + '/' + LOCK_NAME, "written", errno);
    }
}

void DeviceDirectory::refuse() const
{
    char text[16] = {};
    const ssize_t length = ::pread(_lock.get(), text, sizeof text - 1, 0);
    const std::string digits(text, length > 0 ? std::strspn(text, "0123456789") : 0);
    throw DirectoryError("a device already runs in " + _path +
                         (digits.empty() ? "" : " (pid " + digits + ")") +
                         ": use it with KELP_DEVICE=" + _path +
                         ", stop it with `kelp-device stop`, or choose another directory with --device");
}

} // namespace kelp::device
