// SPDX-License-Identifier: Apache-2.0
// What the C functions of the recording platform share: each notes its call here and learns what to answer.
#pragma once

#include "RecordingPlatform.h"

#include <cerrno>
#include <ios>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

struct tarn_event {
    int domain = 0;
    unsigned int code = 0;
    kelp::test::Fields fields = {};
};

namespace kelp::test {

// Notes a call, runs the test's action for it, and returns the result that the test wants, with its errno; without an
// answer of the test's, nothing.
std::optional<std::int64_t> note(const std::string &function, const std::string &arguments, bool canFail);

// A copy of the text that the test has set for a function, for the caller to free.
char *handedOut(const std::string &function);

// Arguments as text.
inline std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}
inline std::string shown(const tarn_event_t *event)
{
    return event ? "event" : "NULL";
}
template <typename... Arguments>
std::string listed(const Arguments &...arguments)
{
    std::ostringstream list;
    [[maybe_unused]] const char *separator = "";
    ((list << std::boolalpha << std::exchange(separator, ", ") << arguments), ...);
    return list.str();
}

// A call of a function that can fail, and of one that cannot.
template <typename... Arguments>
int asked(const char *function, const Arguments &...arguments)
{
    return static_cast<int>(note(function, listed(arguments...), true).value_or(0));
}
template <typename... Arguments>
void told(const char *function, const Arguments &...arguments)
{
    (void)note(function, listed(arguments...), false); // nobody gets a result
}

} // namespace kelp::test
