// SPDX-License-Identifier: Apache-2.0
// kelp-device wait: until a condition holds. It looks at the present state and follows its changes in one step, so that
// it cannot miss.

#include "CommandOptions.h"
#include "Condition.h"
#include "Failure.h"
#include "ObjectView.h"
#include "Verb.h"

#include <memory>
#include <sstream>

namespace kelp::tool {

namespace {

struct WaitOptions {
    std::string device;
    Words condition;
    std::string application;
    std::string count;
    double timeoutSeconds = 10;
};

Condition conditionOf(const WaitOptions &options)
{
    Words words = options.condition;
    for (const auto &[flag, value] :
         {std::pair("--app=", options.application), {"--count=", options.count}}) {
        if (!value.empty()) {
            words.push_back(flag + value);
        }
    }
    return parseCondition(words);
}

int wait(const WaitOptions &options)
{
    const Condition condition = conditionOf(options);
    useDevice(options.device);
    const Verdict verdict = awaitCondition(condition, std::chrono::duration<double>(options.timeoutSeconds));
    if (verdict.holds) {
        return EXIT_HELD;
    }
    std::ostringstream sentence;
    sentence << '"' << condition.text << "\" did not hold within " << options.timeoutSeconds
             << " s: " << verdict.seen;
    throw Failure(EXIT_TIME_OUT, sentence.str());
}

} // namespace

Action addWait(const Command &verb, const Invocation &)
{
    const auto options = std::make_shared<WaitOptions>();
    addDeviceOption(verb, options->device, "The device's directory");
    verb.add("condition", options->condition, "What to wait for").typeName("CONDITION");
    verb.add("--app", options->application, "The application; needed only where several run").typeName("ID");
    verb.add("--count", options->count, "How often the request has to have come (1 by default)")
        .typeName("N");
    addSecondsOption(verb, "--timeout", options->timeoutSeconds, "Give up then, with code 124");
    verb.setFooter(conditionHelp());
    return [options] {
        return wait(*options);
    };
}

} // namespace kelp::tool
