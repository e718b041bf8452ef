// SPDX-License-Identifier: Apache-2.0
// See Words.h.

#include "Words.h"

#include "Failure.h"

#include <algorithm>
#include <charconv>

namespace kelp::tool {

namespace {

constexpr std::string_view BLANKS = " \t\r";
constexpr char QUOTE = '\'';

// What stands in quotes at the beginning of a text; takes it off, with its quotes.
std::string takeQuoted(std::string_view &rest)
{
    std::string text;
    for (rest.remove_prefix(1);; rest.remove_prefix(1)) {
        const std::size_t end = rest.find(QUOTE);
        if (end == std::string_view::npos) {
            throw Failure(EXIT_USAGE, "a ' is open at the end of the line: close it, or write '' for a quote "
                                      "within quotes");
        }
        text += rest.substr(0, end);
        rest.remove_prefix(end + 1);
        if (!rest.starts_with(QUOTE)) {
            return text;
        }
        text += QUOTE;
    }
}

std::string takeWord(std::string_view &rest)
{
    std::string word;
    while (!rest.empty() && BLANKS.find(rest.front()) == std::string_view::npos) {
        if (rest.front() == QUOTE) {
            word += takeQuoted(rest);
            continue;
        }
        word += rest.front();
        rest.remove_prefix(1);
    }
    return word;
}

template <typename Number>
Number numberOf(const std::string &text, Number least, Number most, const std::string &what)
{
    Number value{};
    const char *last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value);
    const bool isInRange = value >= least && value <= most; // false for NaN
    if (error != std::errc() || end != last || !isInRange) {
        throw Failure(EXIT_USAGE, "\"" + text + "\" is no " + what);
    }
    return value;
}

} // namespace

Words splitWords(std::string_view line)
{
    Words words;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
        if (line.empty() || line.front() == '#') {
            return words;
        }
        words.push_back(takeWord(line));
    }
}

std::optional<std::string> takeOption(Words &words, const std::string &name)
{
    const std::string flag = "--" + name;
    std::optional<std::string> value;
    for (std::size_t place = 1; place < words.size();) {
        const auto word = words.begin() + static_cast<Words::difference_type>(place);
        const bool isJoined = word->starts_with(flag + '=');
        if (!isJoined && *word != flag) {
            ++place;
            continue;
        }
        if (value || (!isJoined && word + 1 == words.end())) {
            throw Failure(EXIT_USAGE, flag + (value ? " stands twice: give it once" : " needs a value"));
        }
        value = isJoined ? word->substr(flag.size() + 1) : *(word + 1);
        words.erase(word, word + (isJoined ? 1 : 2));
    }
    return value;
}

void refuseOptions(const Words &words)
{
    const auto found = std::find_if(words.begin(), words.end(),
                                    [](const std::string &word) { return word.starts_with("--"); });
    if (found != words.end()) {
        throw Failure(EXIT_USAGE, "there is no option \"" + *found + "\" here: leave it out");
    }
}

unsigned countOf(const std::string &text, const std::string &option)
{
    return numberOf(text, 1U, 1'000'000U, "number for --" + option + ": give one from 1 to 1000000");
}

double secondsOf(const std::string &text, const std::string &option)
{
    return numberOf(text, 0.0, 86'400.0, "time for --" + option + ": give seconds from 0 to 86400");
}

int exitCodeOf(const std::string &text)
{
    return numberOf(text, 0, 255, "exit code: give a number from 0 to 255");
}

} // namespace kelp::tool
