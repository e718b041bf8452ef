// SPDX-License-Identifier: Apache-2.0
// The ways in which a text writes strings other than as they stand. The decoder has them undone where they
// stand: the string does not become longer, and ends with a NUL where its writing did or before. The encoder
// has them written.
#pragma once

#include <cstddef>
#include <string_view>

namespace kelp::pps {

// A JSON string from the character behind its opening quote, within a text that ends at end with a line feed.
// Returns what follows its closing quote, or nullptr where it is malformed.
char *readJsonString(char *from, const char *end);

// A text with C escapes, from there up to end, which becomes a NUL. False where it is malformed or not UTF-8.
bool undoEscapes(char *from, char *end);

constexpr std::size_t LONGEST_ESCAPE = 6; // "\u0000"

// Write a text with its escapes from a place on, and return the end.
char *writeWithCEscapes(char *at, std::string_view text);
char *writeWithJsonEscapes(char *at, std::string_view text);

} // namespace kelp::pps
