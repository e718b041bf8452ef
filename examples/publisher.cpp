// SPDX-License-Identifier: Apache-2.0
// An application that publishes an object: a battery that is being charged.
//
//     eval "$(kelp-device start)"
//     publisher & kelp-device pps watch /services/power/battery
//
// prints "published level 20" and so on up to 100, a change every 50 ms, and ends. The watch shows each change, or
// several in one where it is slower. What was published last stays:
//
//     kelp-device pps get /services/power/battery level

#include <kelp/PpsObject>
#include <kelp/PpsOpenMode>

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>
#include <QtCore/QTimer>

#include <cerrno>
#include <cstdio>

using kelp::PpsObject;
using kelp::PpsOpenMode;

namespace {

constexpr int FULL = 100; // percent

void say(const QString &line)
{
    QTextStream out(stdout);
    out << line << '\n';
}

// The object may be there already, from an earlier run.
bool openToPublish(PpsObject &battery)
{
    if (battery.open(PpsOpenMode::Publish | PpsOpenMode::Create)) {
        return true;
    }
    return battery.error() == EEXIST && battery.open(PpsOpenMode::Publish);
}

QVariantMap cell(int level)
{
    return {{QStringLiteral("millivolts"), 3300 + 9 * level}};
}

// All attributes take effect at once: no subscriber ever sees a full battery that is still being charged.
bool publish(PpsObject &battery, int level)
{
    const QVariantMap attributes{
        {QStringLiteral("level"), level},
        {QStringLiteral("charging"), level < FULL},
        {QStringLiteral("cells"), QVariantList{cell(level), cell(level)}},
    };
    return battery.write(PpsObject::encode(attributes));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    PpsObject battery(QStringLiteral("/pps/services/power/battery"));
    if (!openToPublish(battery)) {
        say(QLatin1String("cannot publish: ") + battery.errorString());
        return 1;
    }
    int level = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        level += 20;
        if (!publish(battery, level)) {
            say(QLatin1String("cannot publish: ") + battery.errorString());
            QCoreApplication::exit(1);
            return;
        }
        say(QLatin1String("published level ") + QString::number(level));
        if (level == FULL) {
            QCoreApplication::quit();
        }
    });
    timer.start(50);
    return app.exec();
}
