// SPDX-License-Identifier: Apache-2.0
// A publish/subscribe object as the command line has it open: what devicefs.h does, with exceptions and an owner.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace kelp::tool {

// Makes the device that --device names the one whose objects this process uses. Throws Failure as DeviceClient does.
void useDevice(const std::string &option);

// The same of one that need not answer yet; to be called before there are threads that use objects.
void useDeviceIn(const std::string &directory);

// Deletes an object. Throws ObjectFailure.
void deleteObject(const std::string &path);

class ObjectFile
{
public:
    using Moment = std::chrono::steady_clock::time_point;

    // Opens an object with the flags of open(2) and options of devicefs.h. Throws ObjectFailure, as all others do.
    ObjectFile(std::string path, int flags, const std::string &options = {});
    ~ObjectFile();
    ObjectFile(const ObjectFile &) = delete;
    ObjectFile &operator=(const ObjectFile &) = delete;

    // The device's largest object in bytes.
    std::size_t mostBytes() const;

    // All of its text or what has changed in it, as it was opened; empty: there is nothing new.
    std::string read();

    // Waits until there is something to read: true, or false when the time is up.
    bool awaitNews(const std::optional<Moment> &end);

    // One atomic change.
    void write(const std::string &text);

private:
    const std::string _path;
    int _descriptor;
};

} // namespace kelp::tool
