// SPDX-License-Identifier: Apache-2.0
// See ProcEntry.h.

#include "ProcEntry.h"

#include "platform/host/memory/PhysicalMemory.h"
#include "platform/host/memory/ResidentSet.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <unistd.h>

namespace kelp::platform {

namespace {

const char PROC[] = "/proc";
constexpr int ANY_ACCESS = R_OK | W_OK | X_OK;

// Takes the slashes and the name at the beginning of a path off it, and returns the name.
std::string_view takeName(std::string_view &path)
{
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const std::string_view name = path.substr(0, path.find('/'));
    path.remove_prefix(name.size());
    return name;
}

bool namesProcess(std::string_view name)
{
    return name == "self" ||
           (!name.empty() && name.find_first_not_of("0123456789") == std::string_view::npos);
}

// The process itself goes by "self", which is right even where /proc belongs to another process-id namespace.
std::string folderOf(std::string_view process)
{
    const bool isSelf = process == std::to_string(::getpid());
    return std::string(PROC) + '/' + std::string(isSelf ? "self" : process);
}

int errnoOfAccess(const char *path, int mode)
{
    return ::access(path, mode) == 0 ? 0 : errno;
}

int availableMemory(std::int64_t &bytes)
{
    const auto available = PhysicalMemory().available();
    if (!available || *available > std::numeric_limits<std::int64_t>::max()) {
        return EIO;
    }
    bytes = static_cast<std::int64_t>(*available);
    return 0;
}

} // namespace

std::optional<ProcEntry> ProcEntry::at(std::string_view path)
{
    if (!path.starts_with('/') || takeName(path) != "proc") {
        return std::nullopt;
    }
    const std::string_view process = takeName(path);
    if (process.empty()) {
        return ProcEntry("");
    }
    if (!namesProcess(process) || takeName(path) != "as" || !path.empty()) {
        return std::nullopt;
    }
    return ProcEntry(folderOf(process));
}

int ProcEntry::access(int mode) const
{
    if (_process.empty()) {
        return errnoOfAccess(PROC, mode);
    }
    if (mode & ~ANY_ACCESS) {
        return EINVAL;
    }
    // EPERM, here and below: it is there, but the system keeps others' processes from the caller.
    if (const int error = errnoOfAccess(_process.c_str(), F_OK); error && error != EPERM) {
        return error;
    }
    if (mode & (W_OK | X_OK)) {
        return EACCES;
    }
    if (!(mode & R_OK)) {
        return 0;
    }
    const int error = errnoOfAccess((_process + "/statm").c_str(), R_OK);
    return error == EPERM ? EACCES : error;
}

int ProcEntry::size(std::int64_t &bytes) const
{
    return _process.empty() ? availableMemory(bytes) : residentSet(_process, bytes);
}

} // namespace kelp::platform
