// SPDX-License-Identifier: Apache-2.0
// See RunningDevice.h.

#include "RunningDevice.h"

#include <QtGlobal>

RunningDevice::RunningDevice()
{
    qputenv("KELP_DEVICE", (_work.path() + QStringLiteral("/device")).toLocal8Bit());
    start();
}

RunningDevice::~RunningDevice()
{
    qunsetenv("KELP_DEVICE");
    kill();
}

// It prints its directory when it can be reached.
void RunningDevice::start()
{
    _process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    _process.start(QStringLiteral(KELP_DEVICE_PROGRAM),
                   {QStringLiteral("start"), QStringLiteral("--foreground")});
    while (isRunning() || _process.state() == QProcess::Starting) {
        if (_process.canReadLine() || !_process.waitForReadyRead(20'000)) {
            return;
        }
    }
}

void RunningDevice::kill()
{
    _process.kill();
    _process.waitForFinished(20'000);
}

int RunningDevice::tell(const QStringList &arguments)
{
    QProcess verb;
    verb.setProcessChannelMode(QProcess::MergedChannels);
    verb.start(QStringLiteral(KELP_DEVICE_PROGRAM), arguments);
    if (!verb.waitForFinished(20'000)) {
        return -1;
    }
    _output = QString::fromUtf8(verb.readAllStandardOutput());
    return verb.exitStatus() == QProcess::NormalExit ? verb.exitCode() : -1;
}
