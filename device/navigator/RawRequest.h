// SPDX-License-Identifier: Apache-2.0
// The gate for requests that come as PPS text: takes from the text which message it is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelp::device {

// The value of the attribute "msg" (the last, where it stands several times) of the text of one object, with its name
// line or without. Nothing where the text is malformed, or where "msg" is missing or is no text.
std::optional<std::string> messageOfRawRequest(std::string_view text);

} // namespace kelp::device
