// SPDX-License-Identifier: Apache-2.0
// See objects.h.

#include "objects.h"

#include "DescriptorTable.h"
#include "platform/link/Limits.h"

#include <cerrno>
#include <charconv>
#include <fstream>
#include <optional>
#include <string>

namespace kelp::platform {

namespace {

using link::OpenObject;

// The process's umask, which can be read without setting it only here. Without /proc: the strictest.
mode_t umaskOfProcess()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        constexpr std::string_view FIELD = "Umask:\t";
        unsigned int mask = 0;
        if (line.starts_with(FIELD) &&
            std::from_chars(line.data() + FIELD.size(), line.data() + line.size(), mask, 8).ec ==
                std::errc()) {
            return mask;
        }
    }
    return 077;
}

std::uint32_t flagsOf(int flags)
{
    std::uint32_t bits = 0;
    bits |= (flags & O_ACCMODE) != O_WRONLY ? OpenObject::SUBSCRIBE : 0;
    bits |= (flags & O_ACCMODE) != O_RDONLY ? OpenObject::PUBLISH : 0;
    bits |= flags & O_CREAT ? OpenObject::CREATE : 0;
    bits |= flags & O_EXCL ? OpenObject::EXCLUSIVE : 0;
    bits |= flags & O_TRUNC ? OpenObject::TRUNCATE : 0;
    return bits;
}

// Takes the next of the numbers, separated by spaces, that the device answers with.
template <typename Number>
bool takeNumber(std::string_view &text, Number &number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    text.remove_prefix(text.starts_with(' ') ? 1 : 0);
    return true;
}

bool readTerms(const DeviceConnection::Answer &answer, ObjectDescriptor::Terms &terms)
{
    std::string_view rest = answer.text;
    int waits = 0;
    terms.generation = answer.generation;
    if (!takeNumber(rest, terms.number) || !takeNumber(rest, terms.objectMax) || !takeNumber(rest, waits)) {
        return false;
    }
    terms.waits = waits != 0;
    return true;
}

// With the descriptor comes the slot of a subscriber.
int makeDescriptor(DeviceConnection::Answer &answer, int flags, int &fd)
{
    ObjectDescriptor::Terms terms;
    const bool subscribes = (flags & O_ACCMODE) != O_WRONLY;
    if (!readTerms(answer, terms)) {
        return EPROTO;
    }
    if (answer.passed.size() != (subscribes ? 2U : 1U)) {
        return EMFILE; // there was no room for them; with them gone, the device closes what it has opened
    }
    std::optional<link::SlotReader> slot;
    if (subscribes) {
        link::SharedMemory memory;
        if (const int error =
                link::SharedMemory::map(answer.passed[1], link::SlotMemory::sizeFor(0), memory)) {
            return error;
        }
        slot.emplace(std::move(memory));
    }
    link::UniqueFd wake = std::move(answer.passed[0]);
    fd = wake.get();
    DescriptorTable::instance().put(
        fd, std::make_shared<ObjectDescriptor>(std::move(wake), terms, flags, std::move(slot)));
    return 0;
}

} // namespace

int openObject(std::string_view path, int flags, mode_t mode, int &fd)
{
    if (path.size() > link::MAX_TEXT_BYTES) {
        return ENAMETOOLONG;
    }
    const mode_t allowed = flags & O_CREAT ? mode & ~umaskOfProcess() & 0777 : 0;
    DeviceConnection::Answer answer;
    if (const int error = DeviceConnection::instance().ask(
            OpenObject{std::string(path), flagsOf(flags), allowed}, answer)) {
        return error;
    }
    return makeDescriptor(answer, flags, fd);
}

int callOnPath(link::PathCall::Kind kind, std::string_view path, int mode, std::int64_t *size)
{
    if (path.size() > link::MAX_TEXT_BYTES) {
        return ENAMETOOLONG;
    }
    DeviceConnection::Answer answer;
    const link::PathCall call{kind, static_cast<std::uint32_t>(mode), std::string(path)};
    if (const int error = DeviceConnection::instance().ask(call, answer)) {
        return error;
    }
    std::string_view text = answer.text;
    return size && !takeNumber(text, *size) ? EPROTO : 0;
}

} // namespace kelp::platform
