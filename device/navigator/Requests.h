// SPDX-License-Identifier: Apache-2.0
// What an application asks of the navigator: checks each request and hands it to who carries it out.
#pragma once

#include "ExitPath.h"
#include "Pooling.h"
#include "Rotation.h"
#include "Windows.h"

namespace kelp::device {

class Requests
{
public:
    Requests(const Settings &settings, Windows &windows, ExitPath &exitPath, Pooling &pooling,
             Rotation &rotation, Journal &journal)
        : _settings(settings),
          _windows(windows),
          _exitPath(exitPath),
          _pooling(pooling),
          _rotation(rotation),
          _journal(journal)
    {}

    Outcome handle(Application &application, const link::Request &request);

private:
    Outcome carryOut(Application &application, const link::Request &request);
    Outcome setBadge(Application &application, std::int32_t badge);
    Outcome extendTimeout(Application &application, std::int32_t timeoutMs);
    Outcome setClosePrompt(Application &application, const link::Request &request);
    Outcome clearClosePrompt(Application &application);
    Outcome rawWrite(Application &application, const std::string &text);
    Outcome minimise(Application &application);

    const Settings &_settings;
    Windows &_windows;
    ExitPath &_exitPath;
    Pooling &_pooling;
    Rotation &_rotation;
    Journal &_journal;
};

// The request as the trace says it: its name and what it carries.
std::string describe(const link::Request &request);

} // namespace kelp::device
