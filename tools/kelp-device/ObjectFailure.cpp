// SPDX-License-Identifier: Apache-2.0
// See ObjectFailure.h.

#include "ObjectFailure.h"

#include <cerrno>
#include <system_error>

namespace kelp::tool {

namespace {

using Operation = ObjectFailure::Operation;

constexpr char LOOK_AROUND[] = "`kelp-device pps ls` shows what there is";

int exitCodeFor(int error)
{
    switch (error) {
    case ENOTCONN:
    case ECONNRESET:
        return EXIT_NO_DEVICE;
    case ETIMEDOUT:
        return EXIT_TIME_OUT;
    default:
        return EXIT_REFUSED;
    }
}

std::string invalid(Operation operation, const std::string &path)
{
    if (operation == Operation::Write) {
        return "nothing was written to " + path +
               ", because a line is malformed or names another object: each is NAME:ENCODING:VALUE, with an "
               "ENCODING that is empty, c, n, b, json or b64 and a VALUE that goes with it, or -NAME";
    }
    return "no object can have the path " + path + ": " + LOOK_AROUND;
}

// Of what an object's path and contents make impossible.
std::string sentence(Operation operation, const std::string &path, int error)
{
    switch (error) {
    case ENOENT:
        return "there is no object " + path + ": " + LOOK_AROUND;
    case EISDIR:
        return path + " is a directory: `kelp-device pps ls " + path + "` shows what is in it";
    case ENOTDIR:
        return "a part of " + path + " is an object and no directory: " + LOOK_AROUND;
    case EINVAL:
        return invalid(operation, path);
    case EACCES:
        return "the permissions of " + path +
               " do not allow it, or it is the device's own: `kelp-device pps ls -l` shows them";
    case EMSGSIZE:
        return "nothing was written to " + path +
               ", because it would be larger than the device's largest object: shorten it";
    case EAGAIN:
        return "the server of " + path + " has not read what waits for it: try again later";
    case ESTALE:
        return path + " has been deleted meanwhile: try again";
    case ENAMETOOLONG:
        return "the path " + path + " is too long: its parts may have 255 bytes, all of it 1023";
    case ENOSPC:
        return "the device has as many objects as it may have: delete some with `kelp-device pps rm`";
    case ENOTCONN:
    case ECONNRESET:
        return "the device went away: start it again";
    case ETIMEDOUT:
        return "the device does not answer: is it stopped?";
    default:
        return path + ": " + std::generic_category().message(error);
    }
}

} // namespace

ObjectFailure::ObjectFailure(Operation operation, const std::string &path, int error)
    : Failure(exitCodeFor(error), sentence(operation, path, error)),
      _error(error)
{}

} // namespace kelp::tool
