// SPDX-License-Identifier: Apache-2.0
// UIToolkitSupport: what the navigator's events become, in state, signals and log lines.

#include "DispatcherHook.h"
#include "MessageLog.h"
#include "QtThread.h"
#include "RecordingPlatform.h"
#include "SignalLog.h"
#include "TarnEventManager.h"
#include "UIToolkitSupportPrivate.h"

#include <kelp/IconBadge.h>
#include <kelp/UIToolkitSupport.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaProperty>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <memory>

using kelp::UIToolkitSupport;
using kelp::UIToolkitSupportPrivate;
using kelp::test::RecordingPlatform;
using kelp::test::ThreadQueue;

namespace {

const char BEGINNING[] = "tarn_initialize() navigator_request_events(1) navigator_get_domain()";

// Events, and the signals that they become.
struct EventRow {
    const char *name;
    void (*post)(const ThreadQueue &queue);
    const char *emitted;
};

const EventRow EVENT_ROWS[] = {
    {"exit", [](auto &queue) { queue.postExit(); }, "exit()"},
    {"full screen", [](auto &queue) { queue.postWindowState(0, "g"); }, "uiStateChanged(3, g)"},
    {"thumbnail", [](auto &queue) { queue.postWindowState(1, "g"); }, "uiStateChanged(2, g)"},
    {"invisible", [](auto &queue) { queue.postWindowState(2, "none"); }, "uiStateChanged(1, none)"},
    {"active", [](auto &queue) { queue.postWindowActive("g"); }, "executionStateChanged(2, g)"},
    {"inactive", [](auto &queue) { queue.postWindowInactive("g"); }, "executionStateChanged(1, g)"},
    {"swipe down", [](auto &queue) { queue.postSwipeDown(); }, "swipedDown(0)"},
    {"swipe start", [](auto &queue) { queue.postSwipeStart(); }, "swipedDown(1)"},
    {"check", [](auto &queue) { queue.postOrientationCheck("7", 90); }, "orientationCheck(7, 90)"},
    {"check without an id", [](auto &queue) { queue.postOrientationCheck("", 0); }, "orientationCheck(, 0)"},
    {"orientation", [](auto &queue) { queue.postOrientation("7", 270); }, "orientation(7, 270)"},
    {"an angle of no name", [](auto &queue) { queue.postOrientation("7", 45); }, "orientation(7, 45)"},
    {"done", [](auto &queue) { queue.postOrientationDone(180); }, "orientationCompleted(180)"},
    {"size", [](auto &queue) { queue.postOrientationSize("7", 768, 1280); }, "orientationSize(7, 768, 1280)"},
    {"pooled", [](auto &queue) { queue.postPooled("5"); }, "poolRequest(5)"},
    {"ids are Latin-1", [](auto &queue) { queue.postPooled("\xe4"); }, "poolRequest(\xc3\xa4)"},
    {"window groups too", [](auto &queue) { queue.postWindowActive("\xe4"); },
     "executionStateChanged(2, \xc3\xa4)"},
    {"repeated window states",
     [](auto &queue) { queue.postWindowState(0, "g") && queue.postWindowState(0, "g"); },
     "uiStateChanged(3, g) uiStateChanged(3, g)"},
    {"repeated activity", [](auto &queue) { queue.postWindowActive("g") && queue.postWindowActive("g"); },
     "executionStateChanged(2, g) executionStateChanged(2, g)"},
    {"process states, changes only",
     [](auto &queue) {
         for (const int state : {5, 0, 0, 1, 2, -1, 3, 0}) {
             queue.postAppState(state);
         }
     },
     "processStateChanged(1) processStateChanged(2) processStateChanged(3) processStateChanged(0) "
     "processStateChanged(1)"},
    {"codes of no meaning",
     [](auto &queue) {
         for (const unsigned int code : {0u, 1u, 9u, 13u, 35u, 37u, 40u, 43u, 0xffffffffu}) {
             queue.post(navigator_get_domain(), code);
         }
     },
     ""},
};

QString keysOf(const QMetaObject &holder)
{
    const QMetaEnum type = holder.enumerator(holder.indexOfEnumerator("Type"));
    QString keys;
    for (int i = 0; i < type.keyCount(); ++i) {
        keys += QString("%1=%2 ").arg(type.key(i)).arg(type.value(i));
    }
    return keys;
}

} // namespace

Q_DECLARE_METATYPE(const EventRow *)

class tst_UIToolkitSupport : public QObject
{
    Q_OBJECT

    std::unique_ptr<MessageLog> _messages;
    std::unique_ptr<UIToolkitSupport> _support;
    std::unique_ptr<SignalLog> _signals;
    const ThreadQueue _queue = ThreadQueue::ofThisThread();

    // The signals that the pending events become.
    QString emitted()
    {
        const bool taken = QTest::qWaitFor([this] { return _queue.pending() == 0; });
        return taken ? _signals->take() : "not delivered";
    }
    int knownGroups()
    {
        return UIToolkitSupportPrivate::toPrivate(_support.get())->windowGroupStateMapSize();
    }

private Q_SLOTS:
    void init()
    {
        RecordingPlatform::reset();
        UIToolkitSupportPrivate::resetWindowGroupID();
        _messages = std::make_unique<MessageLog>();
        _support = std::make_unique<UIToolkitSupport>();
        _signals = std::make_unique<SignalLog>(_support.get());
    }

    void cleanup()
    {
        _support.reset();
        QCOMPARE(_messages->take(), QStringList());
        _messages.reset();
    }

    void itAsksForTheNavigatorsEventsAndHandsTheQueueBack()
    {
        QCOMPARE(RecordingPlatform::takeRequests().c_str(), BEGINNING);
        bool isSubscribed = false;
        RecordingPlatform::onCall("tarn_shutdown", [&isSubscribed] {
            const auto filter = kelp::TarnEventManager::eventFilter;
            isSubscribed = kelp::DispatcherHook::setFilter(QThread::currentThread(), filter) == filter;
        });

        _support.reset();

        QCOMPARE(RecordingPlatform::takeRequests().c_str(), "tarn_shutdown()");
        QVERIFY(isSubscribed); // the subscription goes after the queue
        QVERIFY(!_queue.postExit());

        RecordingPlatform::answer(RecordingPlatform::ANY, TARN_FAILURE, ENOTCONN); // which is no obstacle
        _support = std::make_unique<UIToolkitSupport>();
        QCOMPARE(RecordingPlatform::takeRequests().c_str(), BEGINNING);
    }

    void eachEventBecomesItsSignals_data()
    {
        QTest::addColumn<const EventRow *>("row");
        for (const EventRow &row : EVENT_ROWS) {
            QTest::newRow(row.name) << &row;
        }
    }
    void eachEventBecomesItsSignals()
    {
        QFETCH(const EventRow *, row);

        row->post(_queue);

        QCOMPARE(emitted(), QString::fromUtf8(row->emitted));
    }

    void anUnknownWindowStateIsLoggedAndChangesNothing()
    {
        _queue.postWindowState(7, "g");
        _queue.postWindowState(-1, "g");

        QCOMPARE(emitted(), "");
        const QString line = "warning: UIToolkitSupportPrivate: Unrecognized TARN window state ";
        QCOMPARE(_messages->take(), (QStringList{line + "7", line + "-1"}));
        QCOMPARE(knownGroups(), 0);
        QCOMPARE(_support->windowGroupID(), "");
        QCOMPARE(int(_support->uiState()), 0);
    }

    void statesAreKeptForEachGroupAndQueriesAddNone()
    {
        const auto states = [this] {
            QString states = QString("%1%2").arg(_support->executionState()).arg(_support->uiState());
            for (const char *id : {"a", "b", "c"}) {
                states += QString(" %1:").arg(id) +
                          QString::number(_support->executionStateForWindowGroup(id)) +
                          QString::number(_support->uiStateForWindowGroup(id));
            }
            return states;
        };
        QCOMPARE(states(), "00 a:00 b:00 c:00");
        _queue.postWindowActive("a");
        emitted();
        QCOMPARE(states(), "20 a:20 b:00 c:00");
        _queue.postWindowState(1, "b");
        _queue.postWindowState(0, "a");
        _queue.postWindowInactive("b");
        emitted();
        QCOMPARE(states(), "13 a:23 b:12 c:00"); // the first two: the last of any group
        QCOMPARE(knownGroups(), 2);

        _support->deregisterWindowGroup("a");
        _support->deregisterWindowGroup("a");

        QCOMPARE(_messages->take(),
                 QStringList{"warning: UIToolkitSUpport::deregisterWindowGroup() unexpected result "
                             "0 when removing group \"a\""});
        QCOMPARE(states(), "13 a:00 b:12 c:00");
        QCOMPARE(_support->windowGroupID(), "a"); // stays
    }

    void theFirstRealGroupIsTheMainOneUnlessAnotherIsChosen()
    {
        const auto mainAfter = [this](const char *group) {
            _queue.postWindowActive(group);
            emitted();
            return UIToolkitSupport().windowGroupID(); // one for all objects
        };
        QCOMPARE(mainAfter("none"), "");
        QCOMPARE(mainAfter("abc"), "abc");
        QCOMPARE(mainAfter("def"), "abc");

        _support->setMainWindowGroup("def");
        _support->setMainWindowGroup("");
        _support->setMainWindowGroup("none");

        QCOMPARE(mainAfter("abc"), "def");
        const QString line = "warning: UIToolkitSupportPrivate::setMainWindowGroup() - Invalid window group ";
        QCOMPARE(_messages->take(), (QStringList{line + "\"\"", line + "\"none\""}));
    }

    void lowMemoryIsLoggedAsCritical()
    {
        _queue.postLowMemory(0);
        _queue.postLowMemory(2);

        QCOMPARE(emitted(), "");
        const QString line = QString("critical: Process %1 received low memory signal, priority = ")
                                 .arg(QCoreApplication::applicationPid());
        QCOMPARE(_messages->take(), (QStringList{line + "0", line + "2"}));
    }

    void thePropertiesFollowTheStatesAndAreFinal()
    {
        _queue.postWindowActive("g");
        _queue.postWindowState(2, "g");
        _queue.postAppState(2);
        emitted();
        QString properties;
        const QMetaObject &type = UIToolkitSupport::staticMetaObject;
        for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
            const QMetaProperty property = type.property(i);
            QVERIFY(property.isFinal() && !property.isWritable() && !property.isConstant());
            properties += QString("%1 %2=%3 by %4(")
                              .arg(property.typeName(), property.name(),
                                   QString::number(
                                       *static_cast<const int *>(property.read(_support.get()).constData())),
                                   property.notifySignal().name()) +
                          property.notifySignal().parameterNames().join(',') + ") ";
        }
        QCOMPARE(properties, "kelp::ProcessExecutionState::Type executionState=2 by "
                             "executionStateChanged(newState,windowGroupID) "
                             "kelp::ProcessUIState::Type uiState=1 by uiStateChanged(newState,windowGroupID) "
                             "kelp::ProcessState::Type processState=3 by processStateChanged(processState) ");
    }

    void theEnumerationsHaveTheirKeysBesidesTheUIState()
    {
        QCOMPARE(keysOf(kelp::ProcessState::staticMetaObject),
                 "Unknown=0 Foreground=1 Background=2 Stopping=3 ");
        QCOMPARE(keysOf(kelp::ProcessExecutionState::staticMetaObject), "Unknown=0 Inactive=1 Active=2 ");
        QCOMPARE(keysOf(kelp::Orientation::staticMetaObject), "North=0 East=90 South=180 West=270 ");
        QCOMPARE(keysOf(kelp::SwipeDownMode::staticMetaObject), "OnCompletionOnly=0 OnStartOnly=1 ");
        QCOMPARE(keysOf(kelp::IconBadge::staticMetaObject), "None=0 Splat=1 ");
        QCOMPARE(kelp::ProcessUIState::staticMetaObject.enumeratorCount(), 0);
    }

    void aWindowStateEventOnAnotherThreadWakesTheMainLoop()
    {
        for (const int windowState : {7, 0}) { // an unknown one as well
            std::promise<ThreadQueue> promise;
            QtThread thread([&promise](QtThread &self) {
                const UIToolkitSupport support;
                connect(&support, &UIToolkitSupport::exit, &support, [&self] { self.quit(); });
                promise.set_value(ThreadQueue::ofThisThread());
                self.exec();
            });
            const ThreadQueue worker = promise.get_future().get();
            QCoreApplication::processEvents();
            bool isTimeUp = false;
            QTimer limit;
            connect(&limit, &QTimer::timeout, this, [&isTimeUp] { isTimeUp = true; });
            limit.start(30000);

            worker.postWindowState(windowState, "worker");
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            worker.postExit();

            QVERIFY(!isTimeUp);
            QTRY_COMPARE(_support->windowGroupID(), windowState == 0 ? "worker" : "");
            QVERIFY(thread.wait());
            QCOMPARE(_messages->take().size(), windowState == 0 ? 0 : 1);
            QCOMPARE(knownGroups(), 0); // it sees the events of its own thread only
        }
    }
};

QTEST_GUILESS_MAIN(tst_UIToolkitSupport)
#include "tst_UIToolkitSupport.moc"
