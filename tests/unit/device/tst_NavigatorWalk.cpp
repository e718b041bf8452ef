// SPDX-License-Identifier: Apache-2.0
// A random walk through everything that applications and persons can do. After each step the device must be
// in a state that makes sense.
#include "NavigatorFixture.h"

#include "device/catalogue/Catalogue.h"

#include <algorithm>
#include <random>
#include <set>

namespace kelp::device {

class NavigatorWalk : public NavigatorFixture
{
protected:
    unsigned pick(std::size_t choices) { return static_cast<unsigned>(_random() % choices); }

    void walkOneStep()
    {
        switch (pick(8)) {
        case 0:
            return connectOrLeave();
        case 1:
            return step(std::chrono::milliseconds(pick(2000)));
        case 2:
        case 3:
            return askSomething();
        default:
            return causeSomething();
        }
    }

    void connectOrLeave()
    {
        if (_processes.size() < 4) {
            _processes.push_back(navigator.connected(200, "p"));
            navigator.openedEvents(_processes.back(), 1);
        } else {
            const auto leaving = _processes.begin() + pick(4);
            navigator.disconnected(*leaving);
            _processes.erase(leaving);
        }
    }

    ProcessId anyProcess() { return _processes.empty() ? 1 : _processes.at(pick(_processes.size())); }

    void askSomething()
    {
        static const Lines TEXTS = {"", "msg::minimizeWindow\n", "pool-1", "pool-2"};
        static const int NUMBERS[] = {0, 1, 90, 270, 400000};
        const auto code = static_cast<link::RequestCode>(1 + pick(link::LAST_REQUEST_CODE));
        const std::string text = _rotation.empty() || pick(2) ? TEXTS.at(pick(TEXTS.size())) : _rotation;
        request(anyProcess(), code, text, NUMBERS[pick(std::size(NUMBERS))]);
    }

    void causeSomething()
    {
        const EventSpec &spec = events()[pick(events().size())];
        const std::vector<ApplicationState> states = navigator.applications();
        Arguments arguments;
        if (spec.kind == EventKind::LowMemory) {
            arguments.emplace_back("severity", std::to_string(pick(3)));
        } else if (spec.kind == EventKind::Rotate) {
            arguments.emplace_back("angle", std::to_string(90 * pick(4)));
        } else if (!states.empty()) {
            const ApplicationState &target = states.at(pick(states.size()));
            const bool isAboutGroup =
                spec.kind <= EventKind::Deactivate || spec.kind == EventKind::CloseGroup;
            const std::string group = target.groups.at(pick(target.groups.size())).id;
            arguments.emplace_back(isAboutGroup ? "group" : "app", isAboutGroup ? group : target.id);
        }
        port.rooms = {{anyProcess(), pick(4)}}; // somebody may have stopped reading
        event(std::string(spec.name), arguments);
        port.rooms.clear();
    }

    void checkScreen() const
    {
        int active = 0;
        int fullScreen = 0;
        for (const ApplicationState &application : navigator.applications()) {
            const int before = fullScreen;
            for (const WindowGroupState &group : application.groups) {
                const bool isFullScreen = group.windowState == NAVIGATOR_WINDOW_FULLSCREEN;
                EXPECT_TRUE(isFullScreen || !group.active) << group.id;
                active += group.active;
                fullScreen += isFullScreen;
            }
            if (application.appState != NAVIGATOR_APP_STOPPING) {
                EXPECT_EQ(application.appState == NAVIGATOR_APP_FOREGROUND, fullScreen > before)
                    << application.id;
            }
        }
        EXPECT_LE(active, 1);
        EXPECT_LE(fullScreen, 1);
    }

    // Whoever the screen turns with is in front, and has one time to keep.
    void checkRotation()
    {
        _rotation.clear();
        for (const ApplicationState &application : navigator.applications()) {
            int times = 0;
            for (const DeadlineState &deadline : application.deadlines) {
                times += deadline.name.starts_with("orientation-");
            }
            EXPECT_EQ(times, application.rotation.has_value());
            if (application.rotation) {
                EXPECT_EQ(_rotation, "") << "a second rotation";
                EXPECT_EQ(application.appState, NAVIGATOR_APP_FOREGROUND);
                _rotation = application.rotation->id;
            }
        }
        _rotations.insert(_rotation);
    }

    void checkDeadlines() const
    {
        std::optional<Time> earliest;
        for (const ApplicationState &application : navigator.applications()) {
            for (const DeadlineState &deadline : application.deadlines) {
                const Time moment = clock.now() + deadline.remaining;
                earliest = std::min(earliest.value_or(moment), moment);
                EXPECT_GT(deadline.remaining, 0ns) << deadline.name;
            }
        }
        EXPECT_EQ(navigator.nextDeadline(), earliest);
    }

private:
    std::mt19937 _random{20240607};
    std::vector<ProcessId> _processes;
    std::string _rotation; // that is under way, or empty

protected:
    std::set<std::string> _rotations; // all that have been seen
};

TEST_F(NavigatorWalk, everyStepLeavesTheDeviceInAStateThatMakesSense)
{
    std::size_t lines = 0;
    for (int steps = 0; steps < 3000 && !HasFailure(); ++steps) {
        walkOneStep();
        checkScreen();
        checkDeadlines();
        checkRotation();
        if (HasFailure()) {
            ADD_FAILURE() << "after step " << steps << ": " << port.traces.back();
        }
        lines += sent().size();
    }
    EXPECT_GT(_rotations.size(), 20u);
    EXPECT_GT(lines, 1000u); // else the walk has not gone anywhere
}

} // namespace kelp::device
