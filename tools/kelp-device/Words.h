// SPDX-License-Identifier: Apache-2.0
// A line of a scenario as its words, and the options among them, which are spelt as on the command line.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelp::tool {

using Words = std::vector<std::string>;

// Splits at blanks. 'Single quotes' keep blanks and # in a word, and two of them within quotes are one; a # that begins
// a word begins a comment. Throws Failure, EXIT_USAGE, as all here do.
Words splitWords(std::string_view line);

// Takes "--name VALUE" or "--name=VALUE" off the words, from the second on; nothing: it is not among them.
std::optional<std::string> takeOption(Words &words, const std::string &name);

// Refuses options that nobody has taken.
void refuseOptions(const Words &words);

// A number of the range, or a refusal that names the option.
unsigned countOf(const std::string &text, const std::string &option); // 1 to 1000000
double secondsOf(const std::string &text, const std::string &option); // 0 to 86400
int exitCodeOf(const std::string &text);                              // 0 to 255

} // namespace kelp::tool
