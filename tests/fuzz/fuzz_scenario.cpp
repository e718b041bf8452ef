// SPDX-License-Identifier: Apache-2.0
// Any bytes as a scenario: it is refused as wrong usage, or its steps stand in their order with at most one start and
// one end, and the words of each line, put in quotes, are the same words again.
#include "tools/kelp-device/Failure.h"
#include "tools/kelp-device/Scenario.h"

#include <cstdint>
#include <cstdlib>

using namespace kelp::tool;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

std::string quoted(const std::string &word)
{
    std::string text = "'";
    for (const char character : word) {
        text += std::string(character == '\'' ? 2 : 1, character);
    }
    return text + '\'';
}

void splitAgain(std::string_view line)
{
    std::string text;
    const Words words = splitWords(line);
    for (const std::string &word : words) {
        text += ' ' + quoted(word);
    }
    require(splitWords(text) == words);
}

void parse(std::string_view text)
{
    const Scenario scenario = parseScenario("s", text);
    unsigned line = 0;
    unsigned starts = 0;
    for (const Step &step : scenario.steps) {
        require(step.line > std::exchange(line, step.line));
        starts += std::holds_alternative<StartStep>(step.what) ? 1 : 0;
        require(&step == &scenario.steps.back() || !std::holds_alternative<EndStep>(step.what));
    }
    require(starts <= 1 && scenario.hasStart() == (starts == 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const auto use : {splitAgain, parse}) {
        try {
            use(text);
        } catch (const Failure &failure) {
            require(failure.exitCode() == EXIT_USAGE);
        }
    }
    return 0;
}
