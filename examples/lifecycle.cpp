// SPDX-License-Identifier: Apache-2.0
// An application that prints its life cycle as its own signals tell it.
//
//     kelp-device run -- lifecycle
//
// prints "fullscreen" and "awake" among its first lines. Drive it from another shell, where KELP_DEVICE names the same
// device (kelp-device run --device DIR sets the place):
//
//     kelp-device event thumbnail
//     kelp-device event low-memory 1
//     kelp-device event exit
//
// With --manual-exit it takes the exit into its own hands: it asks for more time, then leaves.

#include <kelp/Application>

#include <QtCore/QMetaEnum>
#include <QtCore/QTextStream>

#include <cstdio>

namespace {

// One line at once, so that whoever reads the other end of a pipe sees each step as it happens.
void say(const QString &line)
{
    QTextStream out(stdout);
    out << line << '\n';
}

void sayWithGroup(const char *step, const QString &group)
{
    say(QLatin1String("  ") + QLatin1String(step) + QLatin1String(" [") + group + QLatin1Char(']'));
}

void printWindowGroups(kelp::Application &app)
{
    using kelp::Application;
    QObject::connect(&app, &Application::windowGroupFullscreen,
                     [](auto id) { sayWithGroup("fullscreen", id); });
    QObject::connect(&app, &Application::windowGroupThumbnailed,
                     [](auto id) { sayWithGroup("thumbnail", id); });
    QObject::connect(&app, &Application::windowGroupInvisible,
                     [](auto id) { sayWithGroup("invisible", id); });
    QObject::connect(&app, &Application::windowGroupAwake, [](auto id) { sayWithGroup("awake", id); });
    QObject::connect(&app, &Application::windowGroupAsleep, [](auto id) { sayWithGroup("asleep", id); });
}

void printApplication(kelp::Application &app)
{
    using kelp::Application;
    QObject::connect(&app, &Application::fullscreen, [] { say(QStringLiteral("fullscreen")); });
    QObject::connect(&app, &Application::thumbnail, [] { say(QStringLiteral("thumbnail")); });
    QObject::connect(&app, &Application::invisible, [] { say(QStringLiteral("invisible")); });
    QObject::connect(&app, &Application::awake, [] { say(QStringLiteral("awake")); });
    QObject::connect(&app, &Application::asleep, [] { say(QStringLiteral("asleep")); });
    QObject::connect(&app, &Application::swipeDown, [] { say(QStringLiteral("swipe down")); });
    QObject::connect(&app, QOverload<kelp::ProcessState::Type>::of(&Application::processStateChanged),
                     [](kelp::ProcessState::Type state) {
                         const auto keys = QMetaEnum::fromType<kelp::ProcessState::Type>();
                         say(QLatin1String("process state: ") + QLatin1String(keys.valueToKey(state)));
                     });
}

void answerRequests(kelp::Application &app)
{
    using kelp::Application;
    QObject::connect(&app, &Application::pooling, [&app](const QString &id) {
        say(QLatin1String("pooling, request ") + id);
        app.poolingComplete(id);
    });
    QObject::connect(&app, &Application::manualExit, [&app] {
        say(QStringLiteral("asked to exit"));
        say(app.extendTerminationTimeout() ? QStringLiteral("more time granted")
                                           : QStringLiteral("no more time granted"));
        app.quit();
    });
}

} // namespace

int main(int argc, char **argv)
{
    kelp::Application app(argc, argv);
    printWindowGroups(app);
    printApplication(app);
    answerRequests(app);
    QObject::connect(&app, &QCoreApplication::aboutToQuit,
                     [] { say(QStringLiteral("leaving the event loop")); });
    app.setAutoExit(!app.arguments().contains(QStringLiteral("--manual-exit")));
    say(QStringLiteral("started"));
    return app.exec();
}
