// SPDX-License-Identifier: Apache-2.0
// See CommandOptions.h.

#include "CommandOptions.h"

#include "DeviceLocation.h"
#include "LimitOptions.h"
#include "device/pressure/MemoryPressure.h"
#include "device/report/TraceWriter.h"

#include <charconv>
#include <memory>

namespace kelp::tool {

namespace {

std::string checkSeconds(const std::string &text)
{
    constexpr double A_DAY = 24 * 60 * 60;
    double value = 0;
    const char *const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    const bool isInRange = rest == end && error == std::errc() && value >= 0 && value <= A_DAY; // not NaN
    return isInRange ? "" : "\"" + text + "\" is not a number of seconds from 0 to 86400";
}

std::string checkScreen(const std::string &text)
{
    return device::parseScreenSize(text)
               ? ""
               : "\"" + text + "\" is no screen: give its pixels, 1 to 16384 each, as in 768x1280";
}

std::string checkTheme(const std::string &text)
{
    return device::isTheme(text) ? "" : "\"" + text + "\" is no theme: give bright or dark";
}

} // namespace

void addDeviceOption(const Command &verb, std::string &path, const std::string &help)
{
    verb.add("--device", path, help).typeName("DIR");
}

void addSecondsOption(const Command &verb, const std::string &name, double &seconds, const std::string &help)
{
    verb.add(name, seconds, help).typeName("SECONDS").check(checkSeconds).showsDefault();
}

void addSecondsOption(const Command &verb, const std::string &name, std::optional<double> &seconds,
                      const std::string &help)
{
    verb.add(name, seconds, help).typeName("SECONDS").check(checkSeconds);
}

void SetUpOptions::addTo(const Command &verb, const std::string &deviceHelp)
{
    addDeviceOption(verb, device, deviceHelp);
    addSecondsOption(verb, "--grace", graceSeconds, "Time from an application's exit event to its end");
    verb.addFlag("--no-kill", leavesOverstaying, "Only report an application that overstays its grace");
    verb.add("--screen", screen, "The size of the screen in pixels, held upright")
        .typeName("WIDTHxHEIGHT")
        .check(checkScreen)
        .showsDefault();
    verb.add("--theme", theme, "The theme: bright or dark").typeName("NAME").check(checkTheme).showsDefault();
    verb.add("--memory-pressure", memoryPressure,
             "Raise low-memory events from the kernel's figures, of the system or of FILE")
        .optionalValue(device::MemoryPressure::SYSTEM_FILE, "[=FILE]");
    verb.add("--limit", limits, "Bound what clients may take up: " + limitNames())
        .typeName("NAME=N")
        .check(checkLimit)
        .oneValueEach();
}

device::Settings SetUpOptions::settings() const
{
    device::Settings settings;
    settings.grace =
        std::chrono::duration_cast<device::Duration>(std::chrono::duration<double>(graceSeconds));
    settings.endOverstaying = !leavesOverstaying;
    return settings;
}

device::DeviceOptions SetUpOptions::deviceOptions() const
{
    device::DeviceOptions options;
    options.settings = settings();
    options.properties = {device::parseScreenSize(screen).value_or(device::ScreenSize()), theme};
    if (!memoryPressure.empty()) {
        options.memoryPressureFile = absolutePath(memoryPressure);
    }
    applyLimits(limits, options);
    options.ownsProcess = true;
    return options;
}

std::function<void(const device::TraceEntry &)> traceTo(const std::string &path)
{
    const auto writer =
        path.empty() ? std::make_shared<device::TraceWriter>() : std::make_shared<device::TraceWriter>(path);
    return [writer](const device::TraceEntry &entry) {
        writer->write(entry);
    };
}

} // namespace kelp::tool
