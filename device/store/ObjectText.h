// SPDX-License-Identifier: Apache-2.0
// The text of an object for a reader that has seen everything up to some revision. Readers in step get the
// same text, so the last ones are kept: a hundred of them cost one rendering.
#pragma once

#include "Revision.h"

#include <array>
#include <string>
#include <string_view>

namespace kelp::device {

class Object;

class ObjectText
{
public:
    explicit ObjectText(std::size_t mostBytes) : _mostBytes(mostBytes) {}

    // The whole object, or with delta what has changed since, with flags for what was created, deleted or
    // truncated since; for a reader that has seen nothing (NEVER) the whole without flags. At most mostBytes:
    // if the flags make it longer, the whole object without them, as one that was truncated. Valid until the
    // next call.
    std::string_view textFor(const Object &object, Revision seen, bool delta);

    // Cuts an object's text to the whole lines that fit, and flags it as incomplete. The name line always
    // stays.
    static void cut(std::string &text, std::size_t mostBytes);

private:
    struct Kept {
        Revision birth = NEVER; // says which object
        Revision revision = NEVER;
        Revision seen = NEVER;
        bool delta = false;
        std::string text;
    };

    void render(std::string &text, const Object &object, Revision seen, bool delta) const;

    const std::size_t _mostBytes;
    std::array<Kept, 64> _kept; // each text has one place
};

} // namespace kelp::device
