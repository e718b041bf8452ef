// SPDX-License-Identifier: Apache-2.0
// An application that follows an object: the battery of the example publisher.
//
//     eval "$(kelp-device start)"
//     kelp-device pps set /services/power/battery level=0 charging=true
//     subscriber & publisher
//
// prints "level 0, charging" at once, then each change as it comes, and ends with "level 100, full". Changes that come
// faster than it reads are one to it. It ends with code 1 when the object is deleted:
//
//     kelp-device pps rm /services/power/battery

#include <kelp/PpsObject>
#include <kelp/PpsOpenMode>

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>

#include <cstdio>

using kelp::PpsObject;

namespace {

void say(const QString &line)
{
    QTextStream out(stdout);
    out << line << '\n';
}

void showBattery(const QVariantMap &battery)
{
    const bool isCharging = battery.value(QStringLiteral("charging")).toBool();
    say(QStringLiteral("level %1, %2")
            .arg(battery.value(QStringLiteral("level")).toInt())
            .arg(isCharging ? QStringLiteral("charging") : QStringLiteral("full")));
    if (!isCharging) {
        QCoreApplication::quit();
    }
}

void readBattery(PpsObject &object)
{
    bool ok = false;
    kelp::PpsAttribute battery; // its name, and the flags of the object itself
    const QByteArray text = object.read(&ok);
    (void)PpsObject::decodeWithFlags(text, &battery, nullptr);
    if (!ok) {
        say(QLatin1String("cannot read: ") + object.errorString());
        QCoreApplication::exit(1);
    } else if (battery.flags().testFlag(kelp::PpsAttributeFlag::Deleted)) {
        say(QStringLiteral("deleted"));
        QCoreApplication::exit(1);
    } else {
        showBattery(PpsObject::decode(text).value(QStringLiteral("@battery")).toMap());
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    PpsObject battery(QStringLiteral("/pps/services/power/battery"));
    QObject::connect(&battery, &PpsObject::readyRead, &battery, [&battery] { readBattery(battery); });
    if (!battery.open(kelp::PpsOpenMode::Subscribe)) {
        say(QLatin1String("cannot subscribe: ") + battery.errorString());
        return 1;
    }
    return app.exec();
}
