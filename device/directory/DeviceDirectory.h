// SPDX-License-Identifier: Apache-2.0
// The directory that a device lives in: its socket, its lock (which holds the device's process number) and nothing of
// anybody else's. Whoever makes a Device claims one for it; no two devices hold the same one.
#pragma once

#include "platform/link/UniqueFd.h"

#include <stdexcept>
#include <string>

namespace kelp::device {

// Why a directory could not be had: a sentence that says what to do.
class DirectoryError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class DeviceDirectory
{
public:
    // Claims a directory, made if it is missing. What a dead device has left in it is taken over. It stays when the
    // device ends. Throws DirectoryError.
    static DeviceDirectory at(const std::string &path);

    // Claims a new directory within a parent; it goes with its owner. Throws DirectoryError.
    static DeviceDirectory temporaryIn(const std::string &parent);

    DeviceDirectory(DeviceDirectory &&) = default;
    DeviceDirectory &operator=(DeviceDirectory &&) = delete;
    ~DeviceDirectory();

    const std::string &path() const { return _path; }

private:
    DeviceDirectory(const std::string &path, bool isTemporary);
    void lock();
    void writeProcessNumber() const;
    [[noreturn]] void refuse() const;

    std::string _path;
    bool _isTemporary = false;
    link::UniqueFd _directory; // none: moved from
    link::UniqueFd _lock;
};

} // namespace kelp::device
