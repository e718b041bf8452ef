// SPDX-License-Identifier: Apache-2.0
// What one write asks for, taken apart and checked as a whole before anything changes. Outside bytes of
// writes come in here and nowhere else. One Change serves write after write, so that its buffer is allocated
// once.
#pragma once

#include <string_view>
#include <vector>

namespace kelp::device {

class Change
{
public:
    struct Step {
        std::string_view name; // of the attribute
        std::string_view line; // set: "name:encoding:value\n" as it stands
        bool deletes = false;
    };

    // Refers to text, which has to stay while the change is in use. Returns 0, or EINVAL: a line is
    // malformed, its value is none of its encoding, it has flags other than the '-' of a deletion, or names
    // an object behind the first line.
    int parse(std::string_view text);

    // What the name line in front names; empty: there is none.
    std::string_view objectName() const { return _objectName; }
    // The lines behind the name line.
    std::string_view body() const { return _body; }
    // In the order of the lines. A name may stand in several: the last one counts.
    const std::vector<Step> &steps() const { return _steps; }

private:
    std::string_view _objectName;
    std::string_view _body;
    std::vector<Step> _steps;
};

} // namespace kelp::device
