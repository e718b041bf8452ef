// SPDX-License-Identifier: Apache-2.0
// See DirectoryCheck.h.

#include "DirectoryCheck.h"

#include "platform/link/Socket.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace kelp::device {

namespace {

constexpr char ELSE[] = "choose another with --device";

std::string octal(mode_t mode)
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%04o", mode & 07777u);
    return text.data();
}

// What is wrong with an existing file as a device's directory; empty: nothing.
std::string refusalOf(const std::string &path, const struct stat &found)
{
    if (S_ISLNK(found.st_mode)) {
        return path + " is a symbolic link: name the directory itself, or " + ELSE;
    }
    if (!S_ISDIR(found.st_mode)) {
        return path + " is not a directory: " + ELSE;
    }
    if (found.st_uid != ::geteuid()) {
        return path + " belongs to another user (uid " + std::to_string(found.st_uid) + "): " + ELSE;
    }
    if (found.st_mode & (S_IRWXG | S_IRWXO)) {
        return path + " is open to other users (mode " + octal(found.st_mode) +
               "): close it with chmod 700, or " + ELSE;
    }
    return {};
}

} // namespace

DirectoryCheck::DirectoryCheck(const std::string &path)
{
    if (path.size() > link::MAX_DIRECTORY_BYTES) {
        refusal = path + " is too long for a socket (" + std::to_string(path.size()) + " bytes, at most " +
                  std::to_string(link::MAX_DIRECTORY_BYTES) + "): choose a shorter one with --device";
        return;
    }
    // With O_PATH everything can be opened and looked at, links included, and what was looked at stays in hand.
    link::UniqueFd opened(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat found {
    };
    if (!opened || ::fstat(opened.get(), &found) != 0) {
        isMissing = errno == ENOENT;
        refusal = isMissing
                      ? ""
                      : path + " cannot be opened (" + std::generic_category().message(errno) + "): " + ELSE;
        return;
    }
    refusal = refusalOf(path, found);
    if (refusal.empty()) {
        directory = std::move(opened);
    }
}

} // namespace kelp::device
