// SPDX-License-Identifier: Apache-2.0
// See TraceWriter.h.

#include "TraceWriter.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace kelp::device {

namespace {

std::string printable(std::string_view text)
{
    std::string line;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= 0x20 && code != 0x7f) {
            line += character;
            continue;
        }
        std::array<char, 8> escape{};
        std::snprintf(escape.data(), escape.size(), "\\x%02x", code);
        line += escape.data();
    }
    return line;
}

std::string lineOf(const TraceEntry &entry)
{
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(entry.time).count();
    std::array<char, 48> time{};
    std::snprintf(time.data(), time.size(), "%lld.%03lld", static_cast<long long>(milliseconds / 1000),
                  static_cast<long long>(milliseconds % 1000));
    const std::string pid = entry.pid ? std::to_string(entry.pid) : "-";
    const std::string process = entry.process.empty() ? "-" : printable(entry.process);
    return std::string(time.data()) + ' ' + pid + ' ' + process + ' ' + printable(entry.text) + '\n';
}

} // namespace

TraceWriter::TraceWriter(const std::string &path, std::uint64_t maxBytes) : _path(path), _maxBytes(maxBytes)
{
    open();
    if (!_file) {
        throw std::system_error(errno, std::system_category(), "cannot write the trace to " + path);
    }
}

void TraceWriter::open()
{
    _file.reset(
        ::open(_path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR));
    struct stat found {
    };
    _rotates =
        _file && ::fstat(_file.get(), &found) == 0 && S_ISREG(found.st_mode); // not a pipe or a terminal
    _writtenBytes = _rotates ? static_cast<std::uint64_t>(found.st_size) : 0;
}

void TraceWriter::rotate()
{
    (void)::rename(_path.c_str(), (_path + ".1").c_str()); // where that fails, the old file grows on
    open();
}

void TraceWriter::write(const TraceEntry &entry)
{
    const std::string line = lineOf(entry);
    if (_rotates && _writtenBytes + line.size() > _maxBytes) {
        rotate();
    }
    ssize_t written = 0;
    do {
        written = ::write(_path.empty() ? STDERR_FILENO : _file.get(), line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    _writtenBytes += written > 0 ? static_cast<std::uint64_t>(written) : 0;
}

} // namespace kelp::device
