// SPDX-License-Identifier: Apache-2.0
// The gate for requests that come as PPS text: takes from the text which message it is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelp::device {

// The value of the attribute "msg" (the last, where it stands several times) of a PPS text: an optional name
// line, then attribute lines "name:encoding:value", each with its line feed. Nothing where the text is
// malformed or not UTF-8, or where "msg" is missing or is no text.
std::optional<std::string> messageOfRawRequest(std::string_view text);

} // namespace kelp::device
