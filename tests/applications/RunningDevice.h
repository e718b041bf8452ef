// SPDX-License-Identifier: Apache-2.0
// A device in a process and a directory of its own, driven through its command line. While it exists, KELP_DEVICE names
// it for this process.
#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

class RunningDevice
{
public:
    RunningDevice(); // fails the test's assertions through isRunning()
    ~RunningDevice();
    RunningDevice(const RunningDevice &) = delete;
    RunningDevice &operator=(const RunningDevice &) = delete;

    bool isRunning() const { return _process.state() == QProcess::Running; }
    void start();
    void kill(); // as a crash ends it

    // Runs a verb of the command line and returns its exit code; output() is then what it printed.
    int tell(const QStringList &arguments);
    QString output() const { return _output; }

private:
    QTemporaryDir _work;
    QProcess _process;
    QString _output;
};
