// SPDX-License-Identifier: Apache-2.0
// Texts from outside the device: what is fit to be kept, and how they are shown. Used wherever the navigator
// takes a text from a client, or repeats it in a trace line or a reason.
#pragma once

#include <string>
#include <string_view>

namespace kelp::device {

// Well-formed UTF-8, with neither overlong forms nor surrogates. The empty text is.
bool isUtf8(std::string_view text);

// 1 to 255 printable ASCII characters: the same in every encoding that an application may read an id with.
bool isId(std::string_view text);

// The text in double quotes as printable ASCII on one line, all else escaped; a long text is cut and says so.
std::string inQuotes(std::string_view text);

// The text as UTF-8 on one line that drives no terminal: what is malformed or controls something is replaced by U+FFFD;
// a long text is cut and says so.
std::string onOneLine(std::string_view text);

} // namespace kelp::device
