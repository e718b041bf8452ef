// SPDX-License-Identifier: Apache-2.0
// The application of the delivery and start-up benchmarks.
//
//     bench_application moments   writes the moment of each awake() and asleep(), until it exits
//     bench_application awake     leaves its event loop at the first awake(); fails after ten seconds
//     bench_application once      leaves its event loop at once

#include "Moment.h"

#include <kelp/Application>

#include <QtCore/QTimer>

#include <string_view>

int main(int argc, char **argv)
{
    kelp::Application application(argc, argv);
    const std::string_view role = argc > 1 ? argv[1] : "";
    if (role == "moments") {
        QObject::connect(&application, &kelp::Application::awake, kelp::bench::reportMoment);
        QObject::connect(&application, &kelp::Application::asleep, kelp::bench::reportMoment);
    } else if (role == "awake") {
        QObject::connect(&application, &kelp::Application::awake, &QCoreApplication::quit);
        QTimer::singleShot(10'000, &application, [] { QCoreApplication::exit(1); });
    } else {
        QTimer::singleShot(0, &application, &QCoreApplication::quit);
    }
    return application.exec();
}
