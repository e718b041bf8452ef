// SPDX-License-Identifier: Apache-2.0
// See Device.h.

#include "Device.h"

#include "Shutdown.h"
#include "device/doors/ControlCommands.h"
#include "device/doors/ObjectDoor.h"
#include "device/doors/SocketDoor.h"
#include "device/loop/EventLoop.h"
#include "device/manifest/ManifestFile.h"
#include "device/pressure/MemoryPressure.h"
#include "device/report/ObjectReport.h"
#include "device/report/StateReport.h"

#include <algorithm>
#include <csignal>
#include <optional>
#include <utility>
#include <vector>

#include <unistd.h>

namespace kelp::device {

namespace {

std::optional<Time> earlier(std::optional<Time> one, std::optional<Time> other)
{
    return one && other ? std::min(one, other) : one ? one : other;
}

// The signals to take: a shell or nohup(1) that has one ignored wants it to stay so.
std::vector<int> signalsToTake()
{
    std::vector<int> signals{SIGCHLD};
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction present {
        };
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            signals.push_back(number);
        }
    }
    return signals;
}

// A signal blocked on this thread for as long as it lives.
class BlockedSignal
{
public:
    explicit BlockedSignal(int number)
    {
        ::sigemptyset(&_blocked);
        ::sigaddset(&_blocked, number);
        ::pthread_sigmask(SIG_BLOCK, &_blocked, &_before);
    }
    ~BlockedSignal()
    {
        const timespec none{};
        while (::sigtimedwait(&_blocked, nullptr, &none) > 0) {
            // it would strike once it is no longer blocked
        }
        ::pthread_sigmask(SIG_SETMASK, &_before, nullptr);
    }
    BlockedSignal(const BlockedSignal &) = delete;
    BlockedSignal &operator=(const BlockedSignal &) = delete;

private:
    sigset_t _blocked;
    sigset_t _before;
};

} // namespace

class Device::Private final : private NavigatorPort
{
public:
    Private(DeviceDirectory claimed, DeviceOptions given);
    ~Private() override;

    DeviceState state() const;
    std::optional<MemoryPressure> followMemoryPressure();
    Outcome listObjects(const std::string &path) const;
    EventLoop::Delay beforeWait();
    void handleSignal(int number);

    // In the order of the start; the end is the reverse.
    DeviceOptions options;
    Clock clock;
    std::unique_ptr<ChildProcesses> children; // before the loop changes what they are to inherit
    EventLoop loop;
    Navigator navigator;
    std::optional<MemoryPressure> memoryPressure;
    std::optional<DeviceDirectory> directory;
    Store store;
    StateObjects stateObjects{store, [this](const std::string &text) {
                                  note({clock.now(), 0, {}, text});
                              }};
    bool stateHasChanged = false; // since it was last published
    ControlCommands commands;
    ObjectDoor objects;
    SocketDoor door;
    Shutdown shutdown;
    int exitCode = 0;

    void trace(const TraceEntry &entry) override
    {
        stateHasChanged = true; // whatever the navigator decides, it says so
        note(entry);
    }
    // What changes nothing of the navigator's state, such as an object that a client opens.
    void note(const TraceEntry &entry) const
    {
        if (options.trace) {
            options.trace(entry);
        }
    }

private:
    void send(ProcessId process, const link::Event &event) override { door.send(process, event); }
    void sendTo(ChannelId channel, const link::Event &event) override { door.sendTo(channel, event); }
    bool takesEvents(ProcessId process) override { return door.takesEvents(process); }
    bool hasRoom(ProcessId process, std::size_t events) override { return door.hasRoom(process, events); }
    void signal(ProcessId process, int number) override { door.signal(process, number); }
    Label label(pid_t pid) override;
};

Device::Private::Private(DeviceDirectory claimed, DeviceOptions given)
    : options(std::move(given)),
      children(options.ownsProcess ? std::make_unique<ChildProcesses>() : nullptr),
      navigator(clock, options.settings, *this, options.properties),
      memoryPressure(followMemoryPressure()),
      directory(std::move(claimed)),
      store(options.storeLimits),
      commands(navigator, {[this] { return deviceReport(state()); },
                           [this] { return stateReport(state(), navigator.applications()); },
                           [this] { shutdown.request(); },
                           [this](const std::string &path) {
                               return listObjects(path);
                           }}),
      objects(loop, store, options.limits,
              [this](pid_t pid, const std::string &text) {
                  note({clock.now(), pid, {}, text});
              }),
      door(loop, navigator, objects, directory->path(), options.limits,
           {[this](const link::Command &command) { return commands.run(command); },
            [this](pid_t pid, const std::string &text) {
                trace({clock.now(), pid, {}, text});
            }}),
      shutdown(clock, navigator, door, children.get(), options.settings, [this] { loop.stop(); })
{
    stateObjects.publish(navigator.screen(), navigator.memorySeverity());
    stateObjects.publish(navigator.requestCounts());
    loop.setBeforeWait([this] { return beforeWait(); });
    if (options.ownsProcess) {
        loop.onSignals(signalsToTake(), [this](int number) { handleSignal(number); });
    }
    trace({clock.now(), 0, {}, "device started in " + directory->path()});
}

Device::Private::~Private()
{
    trace({clock.now(), 0, {}, "device ended"});
    // Before the connections close: a client that waits for that may start the next device here.
    directory.reset();
}

DeviceState Device::Private::state() const
{
    return {::getpid(),
            directory->path(),
            clock,
            navigator.applications().size(),
            navigator.screen(),
            navigator.memorySeverity(),
            navigator.launches()};
}

std::optional<MemoryPressure> Device::Private::followMemoryPressure()
{
    if (options.memoryPressureFile.empty()) {
        return std::nullopt;
    }
    return MemoryPressure(clock, options.memoryPressureFile,
                          {[this](int severity) { navigator.setMemorySeverity(severity); },
                           [this](const std::string &text) {
                               note({clock.now(), 0, {}, text});
                           }});
}

Label Device::Private::label(pid_t pid)
{
    const ManifestReading reading = readManifest(pid);
    if (!reading.problem.empty()) {
        note({clock.now(), pid, {}, "manifest not used: " + reading.problem});
    }
    return reading.manifest ? Label{reading.manifest->title(), reading.manifest->version()} : Label();
}

Outcome Device::Private::listObjects(const std::string &path) const
{
    std::vector<Store::Entry> entries;
    if (const int error = store.list(path, entries)) {
        return {error,
                "/pps" + path + " is no directory of objects: kelp-device pps ls / shows those at the top"};
    }
    return {0, objectReport(entries)};
}

EventLoop::Delay Device::Private::beforeWait()
{
    navigator.expireDeadlines();
    door.sweep();
    shutdown.step();
    if (memoryPressure) {
        memoryPressure->step();
    }
    if (std::exchange(stateHasChanged, false)) {
        stateObjects.publish(navigator.screen(), navigator.memorySeverity());
        stateObjects.publish(navigator.requestCounts());
        stateObjects.publish(navigator.applications());
    }
    objects.flush();
    std::optional<Time> deadline = earlier(shutdown.nextDeadline(), navigator.nextDeadline());
    if (memoryPressure) {
        deadline = earlier(deadline, memoryPressure->nextDeadline());
    }
    return deadline ? clock.realTimeUntil(*deadline) : std::nullopt;
}

void Device::Private::handleSignal(int number)
{
    if (number != SIGCHLD) {
        return shutdown.request();
    }
    children->reap([this](pid_t child, int code) {
        trace({clock.now(), child, {}, "ended with exit code " + std::to_string(code)});
        exitCode = code;
        shutdown.begin();
    });
}

Device::Device(DeviceDirectory directory, DeviceOptions options)
    : d(std::make_unique<Private>(std::move(directory), std::move(options)))
{}

Device::~Device() = default;

const std::string &Device::directory() const
{
    return d->directory->path();
}

Clock &Device::clock()
{
    return d->clock;
}

Navigator &Device::navigator()
{
    return d->navigator;
}

EventLoop &Device::loop()
{
    return d->loop;
}

void Device::launch(Launch launch)
{
    launch.environment.push_back("KELP_DEVICE=" + directory());
    const pid_t child = d->children->launch(launch);
    d->exitCode = 128 + SIGKILL; // unless it is seen to end otherwise
    d->trace({d->clock.now(), child, {}, "launched " + launch.command.front()});
}

int Device::run()
{
    const BlockedSignal pipe(SIGPIPE); // a client may close what is written to
    d->loop.run();
    return d->exitCode;
}

void Device::stop()
{
    d->loop.post([this] { d->shutdown.request(); });
}

} // namespace kelp::device
