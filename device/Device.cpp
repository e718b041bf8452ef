// SPDX-License-Identifier: Apache-2.0
// See Device.h.

#include "Device.h"

#include "Shutdown.h"
#include "device/doors/ControlCommands.h"
#include "device/doors/SocketDoor.h"
#include "device/loop/EventLoop.h"
#include "device/report/StateReport.h"

#include <algorithm>
#include <csignal>
#include <optional>
#include <vector>

#include <unistd.h>

namespace kelp::device {

namespace {

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

} // namespace

class Device::Private final : private NavigatorPort
{
public:
    Private(DeviceDirectory claimed, DeviceOptions given);
    ~Private() override;

    DeviceState state() const;
    EventLoop::Delay beforeWait();
    void handleSignal(int number);

    // In the order of the start; the end is the reverse.
    DeviceOptions options;
    Clock clock;
    std::unique_ptr<ChildProcesses> children; // before the loop changes what they are to inherit
    EventLoop loop;
    Navigator navigator;
    std::optional<DeviceDirectory> directory;
    ControlCommands commands;
    SocketDoor door;
    Shutdown shutdown;
    int exitCode = 0;

    void trace(const TraceEntry &entry) override
    {
        if (options.trace) {
            options.trace(entry);
        }
    }

private:
    void send(ProcessId process, const link::Event &event) override { door.send(process, event); }
    void sendTo(ChannelId channel, const link::Event &event) override { door.sendTo(channel, event); }
    bool hasRoom(ProcessId process, std::size_t events) override { return door.hasRoom(process, events); }
    void signal(ProcessId process, int number) override { door.signal(process, number); }
};

Device::Private::Private(DeviceDirectory claimed, DeviceOptions given)
    : options(std::move(given)),
      children(options.ownsProcess ? std::make_unique<ChildProcesses>() : nullptr),
      navigator(clock, options.settings, *this),
      directory(std::move(claimed)),
      commands(navigator, {[this] { return deviceReport(state()); },
                           [this] { return stateReport(state(), navigator.applications()); },
                           [this] {
                               shutdown.request();
                           }}),
      door(loop, navigator, directory->path(), options.limits,
           {[this](const link::Command &command) { return commands.run(command); },
            [this](pid_t pid, const std::string &text) {
                trace({clock.now(), pid, {}, text});
            }}),
      shutdown(clock, navigator, door, children.get(), options.settings, [this] { loop.stop(); })
{
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
    return {::getpid(), directory->path(), clock, navigator.applications().size()};
}

EventLoop::Delay Device::Private::beforeWait()
{
    navigator.expireDeadlines();
    door.sweep();
    shutdown.step();
    const std::optional<Time> mine = shutdown.nextDeadline();
    const std::optional<Time> navigators = navigator.nextDeadline();
    if (mine && navigators) {
        return clock.realTimeUntil(std::min(*mine, *navigators));
    }
    return mine || navigators ? clock.realTimeUntil(mine ? *mine : *navigators) : std::nullopt;
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
    d->loop.run();
    return d->exitCode;
}

void Device::stop()
{
    d->loop.post([this] { d->shutdown.request(); });
}

} // namespace kelp::device
