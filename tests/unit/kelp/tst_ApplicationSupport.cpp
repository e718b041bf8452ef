// SPDX-License-Identifier: Apache-2.0
// ApplicationSupport, through the library as it is installed and without any application object.

#include "MessageLog.h"
#include "RecordingPlatform.h"

#include <kelp/ApplicationSupport.h>

#include <QtTest/QtTest>

using kelp::ApplicationSupport;
using kelp::test::RecordingPlatform;

namespace {

const struct {
    const char *title;
    const char *message;
    const char *sent;
} PROMPTS[] = {
    {"\"Wait\", please", "Save?", "\"Wait please\", \"Save?\""},
    {",\",\"", "\",,\"", "\"\", \"\""},
    {"a;'b\\", "1,2,\"3\",", "\"a;'b\\\", \"123\""},
    {"", "", "\"\", \"\""},
    {"\xc3\xa4\xef\xbc\x8c", "\n", "\"\xc3\xa4\xef\xbc\x8c\", \"\n\""}, // a wide comma is none
};

} // namespace

class tst_ApplicationSupport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { RecordingPlatform::reset(); }

    void thePromptReachesTheNavigatorWithoutCommasAndQuotes()
    {
        for (const auto &prompt : PROMPTS) {
            QVERIFY(
                ApplicationSupport::setClosePrompt(QString::fromUtf8(prompt.title), QString(prompt.message)));

            QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                     (std::string("tarn_initialize() navigator_set_close_prompt(") + prompt.sent +
                      ") tarn_shutdown()")
                         .c_str());
        }
    }

    void clearingIsOneRequestAndAnInstanceIsNone()
    {
        {
            const ApplicationSupport instance(nullptr);
        }
        QCOMPARE(RecordingPlatform::takeRequests().c_str(), "");

        QVERIFY(ApplicationSupport::clearClosePrompt());

        QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                 "tarn_initialize() navigator_clear_close_prompt() tarn_shutdown()");
    }

    void aFailureIsLoggedBeforeTheQueueIsHandedBack_data()
    {
        QTest::addColumn<bool>("isSet");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("warning");
        QTest::addColumn<QString>("requests");
        QTest::newRow("set, no queue") << true << "tarn_initialize"
                                       << "setClosePrompt() failed to init TARN"
                                       << "tarn_initialize()";
        QTest::newRow("clear, no queue") << false << "tarn_initialize"
                                         << "clearClosePrompt() failed to init TARN"
                                         << "tarn_initialize()";
        QTest::newRow("set, refused")
            << true << "navigator_set_close_prompt"
            << "setClosePrompt() failed to set prompt -"
            << "tarn_initialize() navigator_set_close_prompt(\"t\", \"m\") tarn_shutdown()";
        QTest::newRow("clear, refused") << false << "navigator_clear_close_prompt"
                                        << "clearClosePrompt() failed to clear prompt -"
                                        << "tarn_initialize() navigator_clear_close_prompt() tarn_shutdown()";
    }
    void aFailureIsLoggedBeforeTheQueueIsHandedBack()
    {
        QFETCH(bool, isSet);
        QFETCH(QString, function);
        QFETCH(QString, warning);
        QFETCH(QString, requests);
        MessageLog messages;
        for (const int result : {TARN_FAILURE, 1}) {
            RecordingPlatform::answer(function.toStdString(), result, ENOMEM);
            RecordingPlatform::onCall("tarn_shutdown", [] {
                qWarning("shutdown");
                errno = EIO;
            });

            QVERIFY(!(isSet ? ApplicationSupport::setClosePrompt("t", "m")
                            : ApplicationSupport::clearClosePrompt()));

            QStringList lines = {"warning: " + warning + " Cannot allocate memory", "warning: shutdown"};
            QCOMPARE(messages.take(), lines.mid(0, requests.endsWith("tarn_shutdown()") ? 2 : 1));
            QCOMPARE(RecordingPlatform::takeRequests().c_str(), requests.toUtf8().constData());
        }
    }
};

QTEST_APPLESS_MAIN(tst_ApplicationSupport)
#include "tst_ApplicationSupport.moc"
