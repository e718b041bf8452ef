// SPDX-License-Identifier: Apache-2.0
// All objects below a directory, as they are and as they become, and the wait for a condition on them. Subscribing and
// reading what is there are one step, so that no change can be missed.
#pragma once

#include "ObjectFile.h"
#include "Verdict.h"

namespace kelp::tool {

class ObjectView
{
public:
    // directory is below "/pps" and exists; empty: the root. Throws ObjectFailure, as all here do.
    explicit ObjectView(std::string directory);

    // The objects with all that was new when it was called.
    const Objects &read();

    // Waits until there is something new: true, or false when the time is up.
    bool awaitNews(ObjectFile::Moment end) { return _all.awaitNews(end); }

private:
    bool takeIn(const std::string &text);

    std::string _directory;
    ObjectFile _all;
    Objects _objects;
    std::map<std::string, unsigned> _rounds; // the round of read() that has last told of an object
    unsigned _round = 0;
};

// Waits until the condition holds on the device in use, or the time is up; the verdict is the last one.
Verdict awaitCondition(const Condition &condition, std::chrono::duration<double> timeout);

} // namespace kelp::tool
