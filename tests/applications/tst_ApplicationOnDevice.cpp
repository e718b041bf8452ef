// SPDX-License-Identifier: Apache-2.0
// kelp::Application in this process, on a real device in another: what only the two together can show.

#include "RunningDevice.h"

#include <kelp/Application>
#include <kelp/UIToolkitSupport>

#include <navigator/navigator.h>

#include <QEventLoop>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>
#include <cerrno>
#include <memory>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

using kelp::Application;

namespace {

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

// An application that has been launched, and the device that it is on.
struct Launched {
    Launched() : awake(&application, &Application::awake) { (void)awake.wait(20'000); }

    int argc = 1;
    char name[16] = "application";
    char *argv[2] = {name, nullptr};
    RunningDevice device;
    Application application{argc, argv};
    QSignalSpy awake;
};

bool descriptorIsReadable()
{
    pollfd queue{tarn_queue_descriptor(), POLLIN, 0};
    return ::poll(&queue, 1, 0) == 1;
}

int exitCodeOf(pid_t child)
{
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

class tst_ApplicationOnDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void minimizedByItself();
    void requestIsMadeToFail();
    void closePromptIsConfirmedAndEndsTheLoop();
    void manualExitGetsMoreTime();
    void eachThreadHasItsOwnEvents();
    void eventsThatHaveArrivedOutliveTheirRequest();
    void deviceDiesAndComesBack();
    void forkedChildHarmsNobody();
};

void tst_ApplicationOnDevice::minimizedByItself()
{
    Launched on;
    QSignalSpy thumbnail(&on.application, &Application::thumbnail);
    QCOMPARE(on.awake.count(), 1);

    QVERIFY(on.application.minimize());

    QVERIFY(thumbnail.wait(20'000));
    QVERIFY(on.application.isThumbnailed() && on.application.isAsleep());
    QVERIFY(on.application.isWindowGroupThumbnailed(QStringLiteral("tst_ApplicationOnDevice/1")));
}

void tst_ApplicationOnDevice::requestIsMadeToFail()
{
    Launched on;
    QCOMPARE(on.device.tell(words("fail raw-write EPERM --times 1")), 0);

    QTest::ignoreMessage(QtWarningMsg, "Minimize request - NRW failed - Operation not permitted");
    QVERIFY(!on.application.minimize());
    QVERIFY(on.application.minimize());
}

void tst_ApplicationOnDevice::closePromptIsConfirmedAndEndsTheLoop()
{
    Launched on;
    QVERIFY(on.application.setClosePrompt(QStringLiteral("Unsaved, \"work\""), QStringLiteral("Really?")));
    QCOMPARE(on.device.tell(words("event close")), 0);
    QCOMPARE(on.device.tell(words("state --json")), 0);
    QVERIFY2(on.device.output().contains(QStringLiteral("Unsaved work")), qPrintable(on.device.output()));

    QCOMPARE(on.device.tell(words("event confirm")), 0);

    QCOMPARE(on.application.exec(), 0);
}

void tst_ApplicationOnDevice::manualExitGetsMoreTime()
{
    Launched on;
    QSignalSpy manualExit(&on.application, &Application::manualExit);
    on.application.setAutoExit(false);
    QVERIFY(!on.application.extendTerminationTimeout());
    QCOMPARE(errno, EINVAL);

    QVERIFY(on.application.requestExit());

    QVERIFY(manualExit.wait(20'000));
    QVERIFY(on.application.extendTerminationTimeout());
}

// A second thread learns the present state, and from then on hears of everything as the first does.
void tst_ApplicationOnDevice::eachThreadHasItsOwnEvents()
{
    Launched on;
    std::atomic<int> fullScreen{0};
    std::atomic<int> thumbnails{0};
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        kelp::UIToolkitSupport support;
        QObject::connect(&support, &kelp::UIToolkitSupport::uiStateChanged, &support,
                         [&](kelp::ProcessUIState::Type state) {
                             fullScreen += state == kelp::ProcessUIState::FullScreen;
                             thumbnails += state == kelp::ProcessUIState::Thumbnail;
                         });
        QEventLoop().exec();
    }));
    thread->start();
    QTRY_COMPARE_WITH_TIMEOUT(fullScreen.load(), 1, 20'000);

    QCOMPARE(on.device.tell(words("event thumbnail")), 0);

    QTRY_COMPARE_WITH_TIMEOUT(thumbnails.load(), 1, 20'000);
    QTRY_VERIFY_WITH_TIMEOUT(on.application.isThumbnailed(), 20'000);
    thread->quit();
    QVERIFY(thread->wait(20'000));
    QCOMPARE(fullScreen.load(), 1);
}

void tst_ApplicationOnDevice::eventsThatHaveArrivedOutliveTheirRequest()
{
    Launched on;
    QSignalSpy thumbnail(&on.application, &Application::thumbnail);
    QCOMPARE(on.device.tell(words("event thumbnail")), 0);

    QCOMPARE(navigator_stop_events(0), TARN_SUCCESS);

    QTRY_COMPARE_WITH_TIMEOUT(thumbnail.count(), 1, 20'000);
    QCOMPARE(on.device.tell(words("event fullscreen")), 0);
    QVERIFY(!descriptorIsReadable());
}

void tst_ApplicationOnDevice::deviceDiesAndComesBack()
{
    Launched on;
    on.device.kill();

    errno = 0;
    QVERIFY(!on.application.extendTerminationTimeout());
    QCOMPARE(errno, ENOTCONN);
    QTRY_VERIFY_WITH_TIMEOUT(!descriptorIsReadable(), 20'000); // the loop is not kept busy

    on.device.start();
    QVERIFY(on.device.isRunning());
    QCOMPARE(navigator_request_events(0), TARN_SUCCESS);
    QTRY_COMPARE_WITH_TIMEOUT(on.awake.count(), 2, 20'000);
}

// The child uses the platform by itself; the parent loses nothing and receives nothing twice.
void tst_ApplicationOnDevice::forkedChildHarmsNobody()
{
    Launched on;
    QSignalSpy thumbnail(&on.application, &Application::thumbnail);
    QCOMPARE(on.device.tell(words("event thumbnail")), 0);
    QVERIFY(descriptorIsReadable());

    const pid_t child = ::fork();
    if (child == 0) {
        const bool quiet = !descriptorIsReadable();
        const bool own = navigator_set_close_prompt("child", "") == TARN_SUCCESS;
        const bool launched = navigator_request_events(0) == TARN_SUCCESS;
        tarn_event_t *event = nullptr;
        const bool first = tarn_next_event(&event, 20'000) == TARN_SUCCESS && event;
        ::_exit(quiet && own && launched && first ? 0 : 1);
    }

    QCOMPARE(exitCodeOf(child), 0);
    QTRY_COMPARE_WITH_TIMEOUT(thumbnail.count(), 1, 20'000);
    QVERIFY(on.application.clearClosePrompt());
    QCOMPARE(on.device.tell(words("event fullscreen --app tst_ApplicationOnDevice")), 0);
    QTRY_VERIFY_WITH_TIMEOUT(on.application.isFullscreen(), 20'000);
    QCOMPARE(thumbnail.count(), 1);
}

// No application object of the test's own: each test makes the one that it is about.
int main(int argc, char **argv)
{
    tst_ApplicationOnDevice test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ApplicationOnDevice.moc"
