// SPDX-License-Identifier: Apache-2.0
// See KernelText.h.

#include "KernelText.h"

#include "platform/link/UniqueFd.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace kelp::platform {

int readKernelFile(const std::string &path, std::string &text)
{
    const link::UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) {
        return errno;
    }
    std::string whole;
    std::array<char, 4096> part;
    ssize_t length = 0;
    do {
        length = ::read(file.get(), part.data(), part.size());
        if (length > 0) {
            whole.append(part.data(), static_cast<std::size_t>(length));
        }
    } while (length > 0 || (length < 0 && errno == EINTR));
    if (length < 0) {
        return errno;
    }
    text = std::move(whole);
    return 0;
}

std::string kernelText(const std::string &path)
{
    std::string text;
    const int error = readKernelFile(path, text);
    if (error == EMFILE || error == ENFILE || error == ENOMEM) {
        throw std::system_error(error, std::generic_category(), path);
    }
    return text;
}

std::string_view takeUpTo(std::string_view &text, char separator)
{
    const std::size_t end = text.find(separator);
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return taken;
}

void skipSpaces(std::string_view &text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
}

std::optional<std::uint64_t> toNumber(std::string_view word)
{
    std::uint64_t number = 0;
    const char *end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return number;
}

} // namespace kelp::platform
