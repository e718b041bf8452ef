// SPDX-License-Identifier: Apache-2.0
// The navigator's parts and the way from each of its operations to the part that carries it out.
#include "Navigator.h"

#include "LowMemory.h"
#include "PersonEvents.h"
#include "RequestFailures.h"
#include "Requests.h"
#include "device/catalogue/Catalogue.h"

#include <cerrno>

namespace kelp::device {

class Navigator::Private
{
public:
    Private(const Clock &deviceClock, const Settings &deviceSettings, NavigatorPort &devicePort,
            const DeviceProperties &properties)
        : clock(deviceClock),
          port(devicePort),
          settings(deviceSettings),
          screen{properties},
          journal(deviceClock, port),
          delivery(port, journal),
          windows(applications, delivery, journal),
          exitPath(deviceClock, settings, port, delivery, deadlines, journal),
          pooling(deviceClock, settings, delivery, deadlines, journal),
          rotation(deviceClock, settings, applications, screen, delivery, deadlines, journal),
          lowMemory(applications, delivery, journal),
          requests(settings, windows, exitPath, pooling, rotation, journal),
          personEvents(applications, screen, windows, exitPath, pooling, rotation, lowMemory, delivery,
                       journal)
    {}

    void reached(const Deadline &deadline);
    void count(link::RequestCode code, const Outcome &outcome);

    const Clock &clock;
    NavigatorPort &port;
    const Settings settings;
    Screen screen;
    Applications applications;
    Deadlines deadlines;
    RequestFailures failures;
    RequestCounts counts;
    Journal journal;
    Delivery delivery;
    Windows windows;
    ExitPath exitPath;
    Pooling pooling;
    Rotation rotation;
    LowMemory lowMemory;
    Requests requests;
    PersonEvents personEvents;
};

void Navigator::Private::reached(const Deadline &deadline)
{
    Application *application = applications.find(deadline.process);
    if (!application) {
        return; // cannot be: a process takes its deadlines with it
    }
    switch (deadline.kind) {
    case DeadlineKind::Terminate:
        return exitPath.terminateReached(*application);
    case DeadlineKind::Kill:
        return exitPath.killReached(*application);
    case DeadlineKind::Pool:
        return pooling.reached(*application, deadline.id);
    case DeadlineKind::OrientationCheck:
        return rotation.checkReached(*application);
    case DeadlineKind::OrientationDone:
        return rotation.turnReached(*application);
    }
}

void Navigator::Private::count(link::RequestCode code, const Outcome &outcome)
{
    RequestCount &count = counts[code];
    ++count.made;
    count.refused += outcome.error ? 1 : 0;
}

Navigator::Navigator(const Clock &clock, const Settings &settings, NavigatorPort &port,
                     const DeviceProperties &properties)
    : d(std::make_unique<Private>(clock, settings, port, properties))
{}

Navigator::~Navigator() = default;

ProcessId Navigator::connected(pid_t pid, const std::string &name)
{
    const Application &process = d->applications.add(pid, name);
    d->journal.note(process, "connected: " + process.name());
    return process.process();
}

void Navigator::openedEvents(ProcessId process, ChannelId channel)
{
    Application *application = d->applications.find(process);
    if (!application) {
        return;
    }
    if (application->isLaunched()) {
        d->windows.tellState(*application, channel);
        d->rotation.tellState(*application, channel);
    } else {
        application->setLabel(d->port.label(application->pid()));
        d->windows.launch(*application);
        d->lowMemory.launched(*application);
        d->rotation.settle();
    }
}

void Navigator::disconnected(ProcessId process)
{
    const Application *application = d->applications.find(process);
    if (!application) {
        return;
    }
    d->journal.note(*application, "gone");
    d->rotation.forget(*application);
    d->deadlines.removeAll(process);
    d->applications.remove(process);
}

Outcome Navigator::request(ProcessId process, const link::Request &request)
{
    Application *application = d->applications.find(process);
    if (!application) {
        return {EINVAL, "the process is not connected"};
    }
    const std::string line = "request " + describe(request);
    if (const std::optional<int> error = d->failures.take(request.code)) {
        Outcome failure = {*error, "made to fail on purpose"};
        d->count(request.code, failure);
        d->journal.noteResult(*application, line, failure);
        return failure;
    }
    Outcome outcome = d->requests.handle(*application, request);
    d->count(request.code, outcome);
    d->rotation.settle();
    d->journal.noteResult(*application, line, outcome);
    return outcome;
}

Outcome Navigator::event(const std::string &name, const ArgumentTexts &arguments)
{
    Outcome outcome = d->personEvents.handle(name, arguments);
    d->rotation.settle();
    d->journal.noteResult("command " + describe(name, arguments), outcome);
    return outcome;
}

void Navigator::failRequests(link::RequestCode code, int error, unsigned times)
{
    d->failures.set(code, error, times);
    const std::string name(requestName(code));
    if (error == 0) {
        d->journal.note("requests " + name + " fail no more on purpose");
        return;
    }
    const std::string which = times == 0 ? "all" : "the next " + std::to_string(times);
    d->journal.note("requests " + name + ": " + which + " fail with " + errorName(error));
}

void Navigator::setMemorySeverity(int severity)
{
    d->lowMemory.setSeverity(severity);
}

std::optional<int> Navigator::memorySeverity() const
{
    return d->lowMemory.severity();
}

void Navigator::exitAll()
{
    d->journal.note("the device shuts down");
    for (Application *application : d->applications.launched()) {
        (void)d->exitPath.begin(*application); // one that exits already goes on
    }
    d->rotation.settle();
}

std::optional<Time> Navigator::nextDeadline() const
{
    return d->deadlines.next();
}

void Navigator::expireDeadlines()
{
    const Time now = d->clock.now();
    while (const std::optional<Deadline> due = d->deadlines.takeDue(now)) {
        d->reached(*due);
    }
    d->rotation.settle(); // an application may have read what kept it from being told
}

std::vector<ApplicationState> Navigator::applications() const
{
    std::vector<ApplicationState> states;
    for (const Application *application : d->applications.launched()) {
        states.push_back(application->describe());
        states.back().deadlines = d->deadlines.describe(application->process(), d->clock.now());
        states.back().rotation = d->rotation.of(*application);
    }
    return states;
}

std::size_t Navigator::launches() const
{
    return d->applications.launches();
}

const RequestCounts &Navigator::requestCounts() const
{
    return d->counts;
}

const Screen &Navigator::screen() const
{
    return d->screen;
}

} // namespace kelp::device
