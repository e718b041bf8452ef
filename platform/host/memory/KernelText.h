// SPDX-License-Identifier: Apache-2.0
// The kernel's own text files: reading one whole, and taking its lines and words apart. What is malformed
// reads as empty or as nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelp::platform {

// Reads a file. Returns 0, or an errno with the text as it was.
int readKernelFile(const std::string &path, std::string &text);

// The text of a file; empty where there is none and where it is kept from the caller. Throws std::system_error where
// descriptors or memory have run out.
std::string kernelText(const std::string &path);

// Takes what stands in front of a separator off a text, and the separator: all of the text where there is
// none.
std::string_view takeUpTo(std::string_view &text, char separator);

// Takes spaces off the beginning.
void skipSpaces(std::string_view &text);

// What a word is, all of it, as a decimal number; nothing for any other word and for what 64 bits do not
// hold.
std::optional<std::uint64_t> toNumber(std::string_view word);

} // namespace kelp::platform
