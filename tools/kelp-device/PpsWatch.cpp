// SPDX-License-Identifier: Apache-2.0
// kelp-device pps watch: an object, or all below a directory, as it is and then as it changes.

#include "CommandOptions.h"
#include "Failure.h"
#include "ObjectFailure.h"
#include "ObjectFile.h"
#include "ObjectJson.h"
#include "PathArgument.h"
#include "PpsVerbs.h"

#include <cerrno>
#include <iostream>

#include <fcntl.h>

namespace kelp::tool {

namespace {

constexpr std::string_view ALL = "/.all";

struct WatchOptions {
    std::string path;
    unsigned count = 0; // 0: without end
    std::optional<double> timeoutSeconds;
    bool wantsWhole = false;
    bool json = false;
};

class Watch
{
public:
    Watch(std::string path, const WatchOptions &options) : _path(std::move(path)), _options(options)
    {
        if (options.timeoutSeconds) {
            const std::chrono::duration<double> timeout(*options.timeoutSeconds);
            _end = std::chrono::steady_clock::now() + std::chrono::ceil<std::chrono::milliseconds>(timeout);
        }
    }

    // Until enough has been seen, or the object has been deleted.
    void run();

private:
    ObjectFile open();
    bool isLast(const std::string &text) const;
    void print(const std::string &text) const;

    std::string _path;
    const WatchOptions &_options;
    std::optional<ObjectFile::Moment> _end;
};

// A directory is watched through the object that stands for all below it.
ObjectFile Watch::open()
{
    const std::string delta = _options.wantsWhole ? "" : "delta";
    try {
        return {_path, O_RDONLY, delta};
    } catch (const ObjectFailure &failure) {
        if (failure.error() != EISDIR) {
            throw;
        }
    }
    _path = (_path == "/" ? "" : _path) + std::string(ALL);
    return {_path, O_RDONLY, delta};
}

// Its name line says that the object has been deleted.
bool Watch::isLast(const std::string &text) const
{
    return !_path.ends_with(ALL) && text.substr(0, text.find('@')).find('-') != std::string::npos;
}

void Watch::print(const std::string &text) const
{
    if (_options.json) {
        for (const std::string &line : changesAsJson(text)) {
            std::cout << line << '\n';
        }
    } else {
        std::cout << text;
    }
    if (!std::cout.flush()) {
        throw Failure(EXIT_REFUSED, "cannot write to standard output: see where it leads");
    }
}

void Watch::run()
{
    ObjectFile object = open();
    for (unsigned seen = 0; _options.count == 0 || seen < _options.count;) {
        // Steady news would be there again however late it is; what is there at first has no such time.
        const bool isLate = seen > 0 && _end && std::chrono::steady_clock::now() >= *_end;
        if (isLate || !object.awaitNews(_end)) {
            throw Failure(EXIT_TIME_OUT, _path + " has not changed as often in that time: give it longer");
        }
        const std::string text = object.read();
        if (text.empty()) {
            continue; // was taken back
        }
        print(text);
        if (isLast(text)) {
            return;
        }
        ++seen;
    }
}

} // namespace

Action addPpsWatch(const Command &verb, const DeviceOption &device)
{
    const auto options = std::make_shared<WatchOptions>();
    verb.add("path", options->path, "The path of an object or a directory, below /pps")
        .required()
        .typeName("PATH");
    verb.add("--count", options->count, "End after N texts; the first is all that is there")
        .typeName("N")
        .range(1, 1000000);
    addSecondsOption(verb, "--timeout", options->timeoutSeconds, "End then at the latest, with code 124");
    verb.addFlag("--whole", options->wantsWhole, "Print the whole object at each change");
    verb.addFlag("--json", options->json,
                 "As JSON, one object a line, with lists of the attributes created and deleted");
    return [device, options] {
        const std::string path = objectPath(options->path);
        useDevice(*device);
        Watch(path, *options).run();
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
