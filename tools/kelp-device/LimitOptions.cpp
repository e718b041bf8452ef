// SPDX-License-Identifier: Apache-2.0
// See LimitOptions.h.

#include "LimitOptions.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace kelp::tool {

namespace {

// A bound of the store or of the doors. The least ones leave room for what the device and its commands do themselves.
struct LimitSpec {
    std::string_view name;
    std::size_t least;
    std::size_t most;
    std::size_t device::StoreLimits::*ofStore;
    std::size_t device::DoorLimits::*ofDoors;
};

constexpr LimitSpec LIMITS[] = {
    {"objects", 16, 10000000, &device::StoreLimits::objects, nullptr},
    {"object-bytes", 16384, 16777216, &device::StoreLimits::objectBytes, nullptr},
    {"queued-messages", 1, 65536, &device::StoreLimits::queuedMessages, nullptr},
    {"queued-bytes", 1024, 1073741824, &device::StoreLimits::queuedBytes, nullptr},
    {"descriptors", 1, 65536, nullptr, &device::DoorLimits::descriptorsPerProcess},
    {"connections", 8, 65536, nullptr, &device::DoorLimits::connections},
    {"unread-events", 64, 1048576, nullptr, &device::DoorLimits::eventBacklog},
};

struct Limit {
    const LimitSpec *spec;
    std::size_t value;
};

// Nothing for a text that is not NAME=N with a name and a number of the table.
std::optional<Limit> parseLimit(std::string_view setting)
{
    const std::size_t separator = std::min(setting.find('='), setting.size());
    const auto *const spec = std::find_if(std::begin(LIMITS), std::end(LIMITS), [&](const LimitSpec &limit) {
        return limit.name == setting.substr(0, separator);
    });
    if (spec == std::end(LIMITS) || separator == setting.size()) {
        return std::nullopt;
    }
    std::size_t value = 0;
    const char *const end = setting.data() + setting.size();
    const auto [rest, error] = std::from_chars(setting.data() + separator + 1, end, value);
    const bool isInRange = error == std::errc() && rest == end && value >= spec->least && value <= spec->most;
    return isInRange ? std::optional(Limit{spec, value}) : std::nullopt;
}

} // namespace

std::string checkLimit(const std::string &setting)
{
    if (parseLimit(setting)) {
        return "";
    }
    std::string message = "\"" + setting + "\" is no limit: give one of";
    for (const LimitSpec &limit : LIMITS) {
        message += std::string(&limit == LIMITS ? " " : ", ") + std::string(limit.name) + '=' +
                   std::to_string(limit.least) + ".." + std::to_string(limit.most);
    }
    return message;
}

void applyLimits(const std::vector<std::string> &settings, device::DeviceOptions &options)
{
    for (const std::string &setting : settings) {
        const auto limit = parseLimit(setting);
        if (limit && limit->spec->ofStore) {
            options.storeLimits.*limit->spec->ofStore = limit->value;
        } else if (limit) {
            options.limits.*limit->spec->ofDoors = limit->value;
        }
    }
}

std::string limitNames()
{
    std::string names;
    for (const LimitSpec &limit : LIMITS) {
        names += (names.empty() ? "" : ", ") + std::string(limit.name);
    }
    return names;
}

} // namespace kelp::tool
