// SPDX-License-Identifier: Apache-2.0
// Application: its meta-object, what the navigator's events become in signals, the exit policy, the state queries and
// the requests.

#include "ApplicationPrivate.h"
#include "MessageLog.h"
#include "RecordingPlatform.h"
#include "SignalLog.h"
#include "UIToolkitSupportPrivate.h"

#include <kelp/Application.h>

#include <QtCore/QMetaProperty>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <memory>

using kelp::Application;
using kelp::test::RecordingPlatform;
using kelp::test::ThreadQueue;

namespace {

// The methods that a class declares itself, in the order of their indices, without a signal's "public".
QStringList methodsOf(const QMetaObject &type)
{
    static const char *const ACCESS[] = {"private", "protected", "public"};
    static const char *const KIND[] = {"method", "signal", "slot", "constructor"};
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        QStringList parameters;
        for (int p = 0; p < method.parameterCount(); ++p) {
            parameters += method.parameterTypes().at(p) + ' ' + method.parameterNames().at(p);
        }
        methods += QString("%1 %2 %3 %4(%5)")
                       .arg(ACCESS[method.access()], KIND[method.methodType()], method.typeName(),
                            QString(method.name()), parameters.join(", "));
    }
    return methods;
}

const QStringList METHODS = {
    "public signal void thumbnail()",
    "public signal void windowGroupThumbnailed(QString windowGroupID)",
    "public signal void fullscreen()",
    "public signal void windowGroupFullscreen(QString windowGroupID)",
    "public signal void invisible()",
    "public signal void windowGroupInvisible(QString windowGroupID)",
    "public signal void swipeDown()",
    "public signal void asleep()",
    "public signal void windowGroupAsleep(QString windowGroupID)",
    "public signal void awake()",
    "public signal void windowGroupAwake(QString windowGroupID)",
    "public signal void manualExit()",
    "public signal void autoExitChanged(bool newAutoExit)",
    "public signal void processStateChanged(kelp::ProcessState::Type processState)",
    "public signal void pooling(QString poolRequestID)",
    "public signal void processStateChanged(int processState)",
    "public slot void setAutoExit(bool autoExit)",
    "public slot bool autoExit()",
    "public slot bool extendTerminationTimeout()",
    "public slot bool setIconBadge(kelp::IconBadge::Type badge)",
    "public slot bool minimize()",
    "public slot bool requestExit()",
    "public slot void poolingComplete(QString poolRequestID)",
    "protected slot bool setIconBadge(int badge)",
    "public method bool setClosePrompt(QString title, QString message)",
    "public method bool clearClosePrompt()",
    "public method bool isAwake()",
    "public method bool isAsleep()",
    "public method bool isThumbnailed()",
    "public method bool isInvisible()",
    "public method bool isFullscreen()",
    "public method bool isWindowGroupAwake(QString windowGroupID)",
    "public method bool isWindowGroupAsleep(QString windowGroupID)",
    "public method bool isWindowGroupThumbnailed(QString windowGroupID)",
    "public method bool isWindowGroupInvisible(QString windowGroupID)",
    "public method bool isWindowGroupFullscreen(QString windowGroupID)",
};

const QStringList PRIVATE_METHODS = {
    "public slot void executionStateChanged(kelp::ProcessExecutionState::Type newState, QString "
    "windowGroupID)",
    "public slot void uiStateChanged(kelp::ProcessUIState::Type newState, QString windowGroupID)",
    "public slot void onProcessStateChanged(kelp::ProcessState::Type processState)",
    "public slot void onPoolRequest(QString poolRequestID)",
    "public slot void applicationExit()",
};

// Calls a method without or with one argument, and returns its answer.
bool answer(Application &application, const char *method, QGenericArgument argument = {})
{
    bool answer = false;
    return QMetaObject::invokeMethod(&application, method, Q_RETURN_ARG(bool, answer), argument) && answer;
}

struct RequestRow {
    const char *name;
    bool (*make)(Application &application);
    const char *function; // of the navigator
    const char *arguments;
    const char *warning; // when it is refused
};

const RequestRow REQUEST_ROWS[] = {
    {"minimize", [](Application &a) { return a.minimize(); }, "navigator_raw_write",
     "\"msg::minimizeWindow\n\", 20", "warning: Minimize request - NRW failed - Operation not permitted"},
    {"exit", [](Application &a) { return a.requestExit(); }, "navigator_close_window", "",
     "warning: Application::requestExit() failed Operation not permitted"},
    {"time-out", [](Application &a) { return a.extendTerminationTimeout(); }, "navigator_extend_terminate",
     "", ""},
    {"None", [](Application &a) { return a.setIconBadge(kelp::IconBadge::None); }, "navigator_clear_badge",
     "", "warning: Failed to set icon badge to 0 - Operation not permitted"},
    {"Splat", [](Application &a) { return a.setIconBadge(kelp::IconBadge::Splat); }, "navigator_set_badge",
     "0", "warning: Failed to set icon badge to 1 - Operation not permitted"},
    {"badge 0", [](Application &a) { return answer(a, "setIconBadge", Q_ARG(int, 0)); },
     "navigator_clear_badge", "", "warning: Failed to set icon badge to 0 - Operation not permitted"},
    {"badge 1", [](Application &a) { return answer(a, "setIconBadge", Q_ARG(int, 1)); },
     "navigator_set_badge", "0", "warning: Failed to set icon badge to 1 - Operation not permitted"},
};

} // namespace

class tst_Application : public QObject
{
    Q_OBJECT

    int _argc = 0;
    std::unique_ptr<MessageLog> _messages;
    std::unique_ptr<Application> _application;
    std::unique_ptr<SignalLog> _signals;
    const ThreadQueue _queue = ThreadQueue::ofThisThread();

    // The signals that the pending events become.
    QString emitted()
    {
        const bool taken = QTest::qWaitFor([this] { return _queue.pending() == 0; });
        return taken ? _signals->take() : "not delivered";
    }
    kelp::ApplicationPrivate &inside() const
    {
        return *_application->findChild<kelp::ApplicationPrivate *>();
    }

private Q_SLOTS:
    void init()
    {
        kelp::UIToolkitSupportPrivate::resetWindowGroupID();
        _messages = std::make_unique<MessageLog>();
        _application = std::make_unique<Application>(_argc, nullptr);
        _signals = std::make_unique<SignalLog>(_application.get());
        RecordingPlatform::reset();
    }

    void cleanup()
    {
        _application.reset();
        QCOMPARE(_signals->take(), ""); // it goes silently
        QCOMPARE(_messages->take(), QStringList());
        _messages.reset();
    }

    void itIsBuiltAndTornDownInOrderWhateverThePlatformAnswers()
    {
        for (const int failingCall : {0, 1, 2, 3, 4}) {
            _application.reset();
            RecordingPlatform::reset();
            if (failingCall > 0) {
                RecordingPlatform::answer(RecordingPlatform::ANY, TARN_FAILURE, ENOMEM, failingCall);
            }

            _application = std::make_unique<Application>(_argc, nullptr);
            QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                     "tarn_initialize() navigator_request_events(1) navigator_get_domain() tarn_initialize() "
                     "navigator_request_events(1)");
            _application.reset();

            QCOMPARE(RecordingPlatform::takeRequests().c_str(), "tarn_shutdown() tarn_shutdown()");
            QVERIFY(!_queue.postExit()); // the thread has left
        }
    }

    void itsMetaObjectHasItsMethodsInOrder()
    {
        QCOMPARE(methodsOf(Application::staticMetaObject), METHODS);
        QCOMPARE(methodsOf(kelp::ApplicationPrivate::staticMetaObject), PRIVATE_METHODS);
    }

    void autoExitIsAPropertyAndTellsOfChangesOnly()
    {
        const QMetaObject &type = Application::staticMetaObject;
        QCOMPARE(type.propertyCount() - type.propertyOffset(), 1);
        const QMetaProperty property = type.property(type.propertyOffset());
        QCOMPARE(property.name(), "autoExit");
        QCOMPARE(property.typeName(), "bool");
        QVERIFY(property.isFinal() && property.isDesignable() && property.isScriptable() &&
                property.isStored());
        QCOMPARE(property.notifySignalIndex(), type.methodOffset() + 12);

        QVERIFY(property.read(_application.get()).toBool());
        _application->setAutoExit(true);
        QVERIFY(property.write(_application.get(), false));
        _application->setAutoExit(false);
        QVERIFY(!_application->autoExit());
        _application->setAutoExit(true);
        QCOMPARE(_signals->take(), "autoExitChanged(false) autoExitChanged(true)");
    }

    void instanceIsNullWithAWarningForAnotherApplication()
    {
        QCOMPARE(Application::instance(), _application.get());

        _application.reset();
        QCOMPARE(Application::instance(), nullptr);
        QCOMPARE(_messages->take(), QStringList());

        const QCoreApplication plain(_argc, nullptr);
        QCOMPARE(Application::instance(), nullptr);
        QCOMPARE(_messages->take(),
                 QStringList{"warning: [Application::instance] Not an instance of kelp::Application."});
    }

    void eachStateBecomesTheGroupsSignalThenTheApplications_data()
    {
        QTest::addColumn<int>("state"); // of the window; below 0: activity
        QTest::addColumn<QString>("slot");
        QTest::addColumn<QString>("groupSignal");
        QTest::newRow("fullscreen") << 0 << "uiStateChanged"
                                    << "windowGroupFullscreen";
        QTest::newRow("thumbnail") << 1 << "uiStateChanged"
                                   << "windowGroupThumbnailed";
        QTest::newRow("invisible") << 2 << "uiStateChanged"
                                   << "windowGroupInvisible";
        QTest::newRow("awake") << -1 << "executionStateChanged"
                               << "windowGroupAwake";
        QTest::newRow("asleep") << -2 << "executionStateChanged"
                                << "windowGroupAsleep";
    }
    void eachStateBecomesTheGroupsSignalThenTheApplications()
    {
        QFETCH(int, state);
        QFETCH(QString, slot);
        QFETCH(QString, groupSignal);
        const auto signalsFor = [&](const char *group) {
            state >= 0    ? _queue.postWindowState(state, group)
            : state == -1 ? _queue.postWindowActive(group)
                          : _queue.postWindowInactive(group);
            return emitted();
        };
        const QString both = groupSignal + "(%1) " + QTest::currentDataTag() + "()";

        QCOMPARE(signalsFor("main"), both.arg("main")); // the first one
        QCOMPARE(signalsFor("none"), both.arg("none"));
        QCOMPARE(_messages->take(), QStringList());
        QCOMPARE(signalsFor("side \"1\""), groupSignal + "(side \"1\")");
        QCOMPARE(_messages->take(), QStringList{"warning: ApplicationPrivate::" + slot +
                                                "() - Filtering event  \"side \"1\"\" != \"main\""});
        _application->setMainWindowGroup("side \"1\"");
        QCOMPARE(signalsFor("side \"1\""), both.arg("side \"1\""));
    }

    void statesOutOfRangeAreLoggedAndEmitNothing()
    {
        const QString warning = "warning: ApplicationPrivate::";
        const QString filtering = warning + "executionStateChanged() - Filtering event  \"side\" != \"\"";
        for (const int state : {0, 4, -1}) {
            const QString line = state == 0 ? QString("() - Received update to unknown")
                                            : QString("() - Received unexpected state  %1").arg(state);

            inside().uiStateChanged(static_cast<kelp::ProcessUIState::Type>(state), "none");
            inside().executionStateChanged(static_cast<kelp::ProcessExecutionState::Type>(state), "side");

            QCOMPARE(_messages->take(), (QStringList{warning + "uiStateChanged" + line, filtering,
                                                     warning + "executionStateChanged" + line}));
        }
        inside().executionStateChanged(static_cast<kelp::ProcessExecutionState::Type>(3), "none");
        QCOMPARE(_messages->take(),
                 QStringList{warning + "executionStateChanged() - Received unexpected state  3"});
        QCOMPARE(_signals->take(), "");
    }

    void otherEventsBecomeTheirSignals()
    {
        bool isTypedFirst = false;
        connect(_application.get(),
                QOverload<kelp::ProcessState::Type>::of(&Application::processStateChanged), this, [&] {
                    isTypedFirst =
                        !_signals->take().endsWith("processStateChanged(2) processStateChanged(2)");
                });
        _queue.postSwipeDown();
        _queue.postSwipeStart();
        _queue.postPooled("p");
        QCOMPARE(emitted(), "swipeDown() swipeDown() pooling(p)");

        _queue.postAppState(1);
        _queue.postAppState(1);                        // no change
        QCOMPARE(emitted(), "processStateChanged(2)"); // the second one, by number
        QVERIFY(isTypedFirst);
    }

    void theExitEventEndsTheEventLoop()
    {
        QTimer::singleShot(0, _application.get(), [this] { _queue.postExit(); });

        QCOMPARE(QCoreApplication::exec(), 0);

        QCOMPARE(_signals->take(), ""); // no manualExit()
    }

    void withoutAutoExitTheExitEventIsLeftToTheApplication()
    {
        _application->setAutoExit(false);
        connect(_application.get(), &Application::manualExit, this, [this] {
            QTimer::singleShot(0, this, [] { QCoreApplication::exit(7); });
        }); // if it still runs then
        QTimer::singleShot(0, _application.get(), [this] { _queue.postExit(); });

        QCOMPARE(QCoreApplication::exec(), 7);

        QCOMPARE(_signals->take(), "autoExitChanged(false) manualExit()");
    }

    void stateQueriesAnswerForTheLastReportAndForEachGroup()
    {
        const char *const QUERIES[] = {"Awake", "Asleep", "Thumbnailed", "Invisible", "Fullscreen"};
        QStringList unknown;
        for (const char *query : QUERIES) {
            unknown += QString("warning: Application::isWindowGroup%1(): Potentially unrecognized WGID \"g\"")
                           .arg(query);
        }
        const auto answers = [&](bool isGroup) {
            QByteArray yes;
            for (const QByteArray query : QUERIES) {
                const bool is = isGroup ? answer(*_application, "isWindowGroup" + query, Q_ARG(QString, "g"))
                                        : answer(*_application, "is" + query);
                yes += is ? query + ' ' : "";
            }
            return yes;
        };
        QCOMPARE(answers(false), "");
        QCOMPARE(_messages->take(), QStringList());
        QCOMPARE(answers(true), "");
        QCOMPARE(_messages->take(), unknown);

        for (const auto &[state, expected] :
             {std::pair(0, "Awake Fullscreen "), std::pair(1, "Asleep Thumbnailed "),
              std::pair(2, "Asleep Invisible ")}) {
            state == 0 ? _queue.postWindowActive("g") : _queue.postWindowInactive("g");
            _queue.postWindowState(state, "g");
            emitted();
            QCOMPARE(answers(false), expected);
            QCOMPARE(answers(true), expected);
        }
        QCOMPARE(_messages->take(), QStringList());

        _application->deregisterWindowGroup("g");
        QCOMPARE(answers(false), "Asleep Invisible ");
        QCOMPARE(answers(true), "");
        QCOMPARE(_messages->take(), unknown);
    }

    void requestsAreOneCallEachAndAnyResultButZeroIsFailure()
    {
        for (const RequestRow &row : REQUEST_ROWS) {
            const std::string request = std::string(row.function) + '(' + row.arguments + ')';
            RecordingPlatform::answer(row.function, TARN_FAILURE, EPERM, 2);
            RecordingPlatform::answer(row.function, 1, EPERM, 3);

            QVERIFY2(row.make(*_application), row.name);
            QCOMPARE(_messages->take(), QStringList());
            for (int refused = 0; refused < 2; ++refused) {
                QVERIFY2(!row.make(*_application), row.name);
                QCOMPARE(_messages->take().join('\n'), row.warning);
            }
            QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                     (request + ' ' + request + ' ' + request).c_str());
        }
    }

    void aBadgeOutOfRangeIsRefusedWithoutACall()
    {
        errno = EBUSY; // of something else
        QVERIFY(!_application->setIconBadge(static_cast<kelp::IconBadge::Type>(7)));
        QCOMPARE(_messages->take(),
                 QStringList{"warning: Failed to set icon badge to 7 - Device or resource busy"});
        for (const int badge : {2, -1}) {
            QVERIFY(!answer(*_application, "setIconBadge", Q_ARG(int, badge)));
            QCOMPARE(_messages->take(),
                     QStringList{QString("warning: ApplicationPrivate::setIconBadge(): Unexpected "
                                         "badge parameter value - %1")
                                     .arg(badge)});
        }
        QCOMPARE(RecordingPlatform::takeRequests().c_str(), "");
    }

    void poolingCompleteSendsTheIdAndLogsLikeTheExitRequest()
    {
        RecordingPlatform::answer("navigator_pooled_response", TARN_FAILURE, EINVAL, 2);

        _application->poolingComplete(QString::fromLatin1("\xe4"));
        QCOMPARE(_messages->take(), QStringList());
        _application->poolingComplete("2");

        QCOMPARE(_messages->take(),
                 QStringList{"warning: Application::requestExit() failed Invalid argument"});
        QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                 "navigator_pooled_response(\"\xc3\xa4\") navigator_pooled_response(\"2\")");
    }

    void theClosePromptIsPassedOnAndLeavesTheQueueInitialised()
    {
        QVERIFY(_application->setClosePrompt("\"t\"", "m"));
        QVERIFY(_application->clearClosePrompt());

        QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                 "tarn_initialize() navigator_set_close_prompt(\"t\", \"m\") tarn_shutdown() "
                 "tarn_initialize() navigator_clear_close_prompt() tarn_shutdown()");
        _queue.postSwipeDown();
        QCOMPARE(emitted(), "swipeDown()");
    }
};

QTEST_APPLESS_MAIN(tst_Application)
#include "tst_Application.moc"
