// SPDX-License-Identifier: Apache-2.0
// See ScenarioSession.h.

#include "ScenarioSession.h"

#include "Failure.h"
#include "ObjectFile.h"
#include "ScenarioRunner.h"
#include "device/loop/EventLoop.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>

namespace kelp::tool {

namespace {

constexpr int SIGNALLED = 128; // and the signal's number
constexpr std::size_t MOST_BYTES = 1 << 20;

std::string contentsOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text(MOST_BYTES + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.is_open() || file.bad() || std::filesystem::is_directory(path)) {
        throw Failure(EXIT_USAGE, "cannot read the scenario " + path + ": see whether it is there");
    }
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > MOST_BYTES) {
        throw Failure(EXIT_USAGE, path + " is no scenario: it has more than 1 MiB");
    }
    return text;
}

} // namespace

ScenarioSession::ScenarioSession(const std::string &path, bool json)
    : _scenario(parseScenario(std::filesystem::path(path).filename(), contentsOf(path))),
      _report(json)
{}

ScenarioSession::~ScenarioSession()
{
    if (_thread.joinable()) {
        _thread.join();
    }
}

ScenarioSession::Hold ScenarioSession::begin(device::Device &device, device::Launch launch,
                                             device::Duration grace)
{
    useDeviceIn(device.directory());
    _device = &device;
    _launch = std::move(launch);
    _thread = std::thread([this, directory = device.directory(), grace] { drive(directory, grace); });
    return Hold(*this);
}

void ScenarioSession::release()
{
    const std::lock_guard lock(_mutex);
    _launches = _device->navigator().launches();
    _device = nullptr;
}

void ScenarioSession::start()
{
    auto promise = std::make_shared<std::promise<void>>();
    std::future<void> started = promise->get_future();
    post([launch = _launch, promise](device::Device &device) {
        device.launch(launch);
        promise->set_value();
    });
    // The device alone can keep it now; it is broken with what the device does not carry out.
    promise.reset();
    started.get();
}

void ScenarioSession::post(std::function<void(device::Device &)> task)
{
    const std::lock_guard lock(_mutex);
    if (_device) {
        _device->loop().post([device = _device, task = std::move(task)] { task(*device); });
    }
}

void ScenarioSession::breakOff(const std::string &why)
{
    std::cerr << "kelp-device: the scenario breaks off: " + why + '\n';
    _stepsCode = EXIT_REFUSED;
    const std::lock_guard lock(_mutex);
    if (_device) {
        _device->stop();
    }
}

void ScenarioSession::drive(const std::string &deviceDirectory, device::Duration grace)
{
    try {
        ScenarioRunner runner(deviceDirectory, grace, _scenario, _report, [this] { start(); });
        _stepsCode = runner.run();
        _hasStopped = runner.hasStopped();
    } catch (const std::future_error &) {
        _stepsCode = EXIT_REFUSED; // nothing was started: whoever runs the device says why
    } catch (const std::exception &error) {
        breakOff(error.what());
    }
}

int ScenarioSession::finish(int applicationsCode)
{
    _thread.join();
    if (isCrash(applicationsCode)) {
        _report.end(applicationsCode, _launches,
                    "the application was ended by signal " + std::to_string(applicationsCode - SIGNALLED));
        return EXIT_CRASHED;
    }
    const bool isExpected = applicationsCode == expectedCode() || isOurSignal(applicationsCode - SIGNALLED);
    _report.end(applicationsCode, _launches,
                isExpected ? ""
                           : "the application ended with code " + std::to_string(applicationsCode) +
                                 ", not " + std::to_string(expectedCode()));
    return _stepsCode != EXIT_HELD || isExpected ? _stepsCode : static_cast<int>(EXIT_REFUSED);
}

int ScenarioSession::expectedCode() const
{
    return _scenario.hasEnd() ? std::get<EndStep>(_scenario.steps.back().what).exitCode : 0;
}

bool ScenarioSession::isOurSignal(int signal) const
{
    return _hasStopped && _launches == 0 && (signal == SIGTERM || signal == SIGKILL);
}

bool ScenarioSession::isCrash(int code) const
{
    const int signal = code - SIGNALLED;
    const bool isWanted = _scenario.hasEnd() && code == expectedCode();
    return signal > 0 && signal <= SIGRTMAX && !isOurSignal(signal) && !isWanted;
}

} // namespace kelp::tool
