// SPDX-License-Identifier: Apache-2.0
// See MemoryPressure.h.

#include "MemoryPressure.h"

#include "device/files/RegularFile.h"

#include <navigator/navigator.h>

#include <stdexcept>

namespace kelp::device {

namespace {

constexpr Duration INTERVAL = std::chrono::seconds(1); // the kernel makes new averages every two
constexpr std::size_t MOST_BYTES = 4096;

std::string advice(const std::string &path)
{
    if (path == MemoryPressure::SYSTEM_FILE) {
        return ": boot a kernel that has pressure figures with psi=1, or name a control group's "
               "memory.pressure";
    }
    return ": name a file such as " + std::string(MemoryPressure::SYSTEM_FILE) +
           " or a control group's memory.pressure";
}

} // namespace

MemoryPressure::MemoryPressure(const Clock &clock, std::string path, Listener listener)
    : _clock(clock),
      _path(std::move(path)),
      _listener(std::move(listener)),
      _nextReading(clock.now())
{
    std::string problem;
    if (!read(problem)) {
        throw std::runtime_error("no memory pressure to follow: " + problem + advice(_path));
    }
}

std::optional<PressureFigures> MemoryPressure::read(std::string &problem) const
{
    const FileReading file = readRegularFile(_path, MOST_BYTES);
    const auto figures = file.problem.empty() ? PressureFigures::parse(file.text) : std::nullopt;
    if (!figures) {
        problem = _path + ' ' + (file.problem.empty() ? "has no pressure figures" : file.problem);
    }
    return figures;
}

void MemoryPressure::step()
{
    const Time now = _clock.now();
    if (now < _nextReading) {
        return;
    }
    _nextReading = now + INTERVAL;
    std::string problem;
    const auto figures = read(problem);
    if (!figures) {
        if (!_isLost) {
            _listener.note("memory pressure stays as it is: " + problem);
        }
        _isLost = true;
        return;
    }
    _isLost = false;
    const int severity = severityAfter(_severity.value_or(NAVIGATOR_MEMORY_CLEAR), *figures);
    if (_severity != severity) {
        _severity = severity;
        _listener.changed(severity);
    }
}

} // namespace kelp::device
