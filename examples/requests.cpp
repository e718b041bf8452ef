// SPDX-License-Identifier: Apache-2.0
// An application that asks the navigator for all that it can: a badge, a locked orientation, the start of swipes, time for
// its window, its minimising, a rotation, more time, its end; and that loads the variant of an asset that fits the device.
//
//     examples/requests.sh kelp-device ./requests
//
// makes assets in a temporary folder and walks it through examples/requests.scenario; it prints each step and the asset.
#include <kelp/Application>
#include <kelp/UIToolkitSupport>

#include <QtCore/QString>
#include <QtCore/QUrl>

#include <cstdio>

namespace {

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout); // whoever watches sees it at once
}

void say(const char *request, bool isDone)
{
    say(QLatin1String(request) + QLatin1String(isDone ? ": done" : ": refused"));
}

void sayAsset()
{
    const QUrl url(QStringLiteral("asset:///image.txt"));
    say(QLatin1String("asset: ") +
        kelp::UIToolkitSupport::absolutePathFromUrl(url).section(QLatin1Char('/'), -2));
}

void askAtFirst(kelp::Application &app, kelp::UIToolkitSupport &toolkit)
{
    using kelp::UIToolkitSupport;
    QObject::connect(&app, &kelp::Application::awake, [&app, &toolkit, asked = false]() mutable {
        if (asked) {
            return;
        }
        asked = true;
        say("time for the first window", toolkit.setWindowCreationTimeout(10000));
        say("start of swipes", toolkit.setSwipeDownMode(kelp::SwipeDownMode::OnStartOnly));
        say("lock", toolkit.lockOrientation());
        say("badge", app.setIconBadge(kelp::IconBadge::Splat));
        sayAsset();
    });
}

void answerSwipes(kelp::Application &app, kelp::UIToolkitSupport &toolkit)
{
    QObject::connect(&toolkit, &kelp::UIToolkitSupport::swipedDown,
                     [&app, &toolkit](kelp::SwipeDownMode::Type swipe) {
                         if (swipe == kelp::SwipeDownMode::OnStartOnly) {
                             say("unlock", toolkit.unlockOrientation());
                         } else {
                             say("minimise", app.minimize());
                         }
                     });
}

void answerRotations(kelp::Application &app, kelp::UIToolkitSupport &toolkit)
{
    using kelp::UIToolkitSupport;
    QObject::connect(&toolkit, &UIToolkitSupport::orientationCheck, [&toolkit](const QString &id) {
        say("may turn", toolkit.orientationCheckResponse(id, true));
    });
    QObject::connect(&toolkit, &UIToolkitSupport::orientationSize,
                     [](const QString &, int width, int height) {
                         say(QStringLiteral("size: %1x%2").arg(width).arg(height));
                     });
    QObject::connect(&toolkit, &UIToolkitSupport::orientation,
                     [&toolkit](const QString &id) { say("turned", toolkit.doneOrientation(id)); });
    QObject::connect(&toolkit, &UIToolkitSupport::orientationCompleted,
                     [&app](kelp::Orientation::Type angle) {
                         say(QStringLiteral("orientation: %1").arg(int(angle)));
                         say("no badge", app.setIconBadge(kelp::IconBadge::None));
                     });
}

void end(kelp::Application &app)
{
    using kelp::Application;
    QObject::connect(&app, &Application::pooling, [&app](const QString &id) {
        sayAsset();
        app.poolingComplete(id);
    });
    QObject::connect(&app, &Application::invisible, [&app] { say("end", app.requestExit()); });
    QObject::connect(&app, &Application::manualExit, [&app] {
        say("more time", app.extendTerminationTimeout());
        app.quit();
    });
}

} // namespace

int main(int argc, char **argv)
{
    kelp::Application app(argc, argv);
    kelp::UIToolkitSupport toolkit;
    app.setAutoExit(false);
    askAtFirst(app, toolkit);
    answerSwipes(app, toolkit);
    answerRotations(app, toolkit);
    end(app);
    return app.exec();
}
