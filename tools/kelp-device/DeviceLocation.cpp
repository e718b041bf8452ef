// SPDX-License-Identifier: Apache-2.0
// See DeviceLocation.h.

#include "DeviceLocation.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>

#include <unistd.h>

namespace kelp::tool {

namespace {

std::string environment(const char *name)
{
    const char *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): there is one thread
    return value ? value : "";
}

} // namespace

std::string deviceDirectory(const std::string &option)
{
    if (!option.empty()) {
        return absolutePath(option);
    }
    if (const std::string device = environment("KELP_DEVICE"); !device.empty()) {
        return absolutePath(device);
    }
    if (const std::string runtime = environment("XDG_RUNTIME_DIR"); runtime.starts_with('/')) {
        return absolutePath(runtime) + "/kelp-device";
    }
    return "/tmp/kelp-device-" + std::to_string(::geteuid());
}

std::string privateParent()
{
    const std::string runtime = environment("XDG_RUNTIME_DIR");
    const bool isFit = runtime.starts_with('/') && ::access(runtime.c_str(), W_OK | X_OK) == 0;
    return isFit ? absolutePath(runtime) : "/tmp";
}

std::string absolutePath(const std::string &path)
{
    std::string absolute = std::filesystem::absolute(path).string();
    while (absolute.size() > 1 && absolute.ends_with('/')) {
        absolute.pop_back();
    }
    return absolute;
}

std::string shellQuoted(const std::string &text)
{
    constexpr std::string_view PLAIN =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+,:@%";
    if (!text.empty() && text.find_first_not_of(PLAIN) == std::string::npos) {
        return text;
    }
    std::string quoted = "'";
    for (const char character : text) {
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return quoted + '\'';
}

} // namespace kelp::tool
