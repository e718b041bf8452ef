// SPDX-License-Identifier: Apache-2.0
// What kept a publish/subscribe object from being opened, read, written or deleted, in words that say what to do.
#pragma once

#include "Failure.h"

#include <string>

namespace kelp::tool {

class ObjectFailure : public Failure
{
public:
    enum class Operation { Open, Read, Write, Delete };

    // path is the object's below "/pps", error an errno of devicefs.h.
    ObjectFailure(Operation operation, const std::string &path, int error);

    int error() const { return _error; }

private:
    int _error;
};

} // namespace kelp::tool
