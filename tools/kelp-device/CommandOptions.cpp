// SPDX-License-Identifier: Apache-2.0
// See CommandOptions.h.

#include "CommandOptions.h"

#include "device/report/TraceWriter.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace kelp::tool {

namespace {

std::string checkSeconds(const std::string &text)
{
    constexpr double A_DAY = 24 * 60 * 60;
    double value = 0;
    const bool isInRange = CLI::detail::lexical_cast(text, value) && value >= 0 && value <= A_DAY; // not NaN
    return isInRange ? "" : "\"" + text + "\" is not a number of seconds from 0 to 86400";
}

} // namespace

void addDeviceOption(CLI::App &verb, std::string &path, const std::string &help)
{
    verb.add_option("--device", path, help)->type_name("DIR");
}

void addSecondsOption(CLI::App &verb, const std::string &name, double &seconds, const std::string &help)
{
    verb.add_option(name, seconds, help)->type_name("SECONDS")->check(checkSeconds)->capture_default_str();
}

void addSecondsOption(CLI::App &verb, const std::string &name, std::optional<double> &seconds,
                      const std::string &help)
{
    verb.add_option(name, seconds, help)->type_name("SECONDS")->check(checkSeconds);
}

void SetUpOptions::addTo(CLI::App &verb, const std::string &deviceHelp)
{
    addDeviceOption(verb, device, deviceHelp);
    addSecondsOption(verb, "--grace", graceSeconds, "Time from an application's exit event to its end");
    verb.add_flag("--no-kill", leavesOverstaying, "Only report an application that overstays its grace");
}

device::Settings SetUpOptions::settings() const
{
    device::Settings settings;
    settings.grace =
        std::chrono::duration_cast<device::Duration>(std::chrono::duration<double>(graceSeconds));
    settings.endOverstaying = !leavesOverstaying;
    return settings;
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
