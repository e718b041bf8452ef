// SPDX-License-Identifier: Apache-2.0
// See ControlGroupMount.h.

#include "ControlGroupMount.h"

#include "KernelText.h"

namespace kelp::platform {

namespace {

bool isOctalDigit(char digit)
{
    return digit >= '0' && digit <= '7';
}

// A path as mountinfo writes it, with spaces and the like as three octal digits behind a backslash.
std::string unescaped(std::string_view text)
{
    std::string path;
    while (!text.empty()) {
        const bool isEscape = text.size() > 3 && text[0] == '\\' && isOctalDigit(text[1]) &&
                              isOctalDigit(text[2]) && isOctalDigit(text[3]);
        path += isEscape ? static_cast<char>((text[1] - '0') * 64 + (text[2] - '0') * 8 + (text[3] - '0'))
                         : text.front();
        text.remove_prefix(isEscape ? 4 : 1);
    }
    return path;
}

std::optional<ControlGroupVersion> versionOf(std::string_view fileSystem, std::string_view options)
{
    if (fileSystem == "cgroup2") {
        return ControlGroupVersion::V2;
    }
    while (fileSystem == "cgroup" && !options.empty()) {
        if (takeUpTo(options, ',') == "memory") {
            return ControlGroupVersion::V1;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<ControlGroupMount> ControlGroupMount::parse(std::string_view line)
{
    for (int i = 0; i < 3; ++i) { // the numbers of the mount, of its parent and of its device
        (void)takeUpTo(line, ' ');
    }
    const std::string_view root = takeUpTo(line, ' ');
    const std::string_view point = takeUpTo(line, ' ');
    while (takeUpTo(line, ' ') != "-") { // options, and any number of other fields
        if (line.empty()) {
            return std::nullopt;
        }
    }
    const std::string_view fileSystem = takeUpTo(line, ' ');
    (void)takeUpTo(line, ' '); // the source, which may be empty
    const auto version = versionOf(fileSystem, line);
    if (!version) {
        return std::nullopt;
    }
    return ControlGroupMount{*version, unescaped(root), unescaped(point)};
}

} // namespace kelp::platform
