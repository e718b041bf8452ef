// SPDX-License-Identifier: Apache-2.0
// A path as clients give it, "/services/power/battery?delta,wait", taken apart: its parts, and the options
// behind the first '?'. Repeated slashes count as one. Every call of the store that takes a path begins here.
#pragma once

#include <string_view>
#include <vector>

namespace kelp::device {

class ObjectPath
{
public:
    struct Options {
        bool delta = false;
        bool wait = false;
        bool nopersist = false;
        bool server = false;
    };

    // Refers to text, which has to stay. Returns 0, or
    //   ENAMETOOLONG  a part is longer than 255 bytes, or all of it than 1023,
    //   EINVAL        no '/' at the beginning, "." or ".." as a part, a control character, no UTF-8, or an option
    //                 that is unknown, empty or repeated.
    int parse(std::string_view text);

    // None: the root.
    const std::vector<std::string_view> &parts() const { return _parts; }
    const Options &options() const { return _options; }

    // It ends in a slash.
    bool namesDirectory() const { return _namesDirectory; }
    // The last part is ".all", and no other.
    bool namesAll() const;
    // ".all" stands somewhere: nothing can be created there.
    bool holdsAll() const;

private:
    int parseParts(std::string_view text);
    int parseOptions(std::string_view text);

    std::vector<std::string_view> _parts;
    Options _options;
    bool _namesDirectory = false;
};

} // namespace kelp::device
