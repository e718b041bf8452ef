// SPDX-License-Identifier: Apache-2.0
// What UIToolkitSupport asks of the navigator: calls, results and log lines.

#include "MessageLog.h"
#include "RecordingPlatform.h"

#include <kelp/UIToolkitSupport.h>

#include <QtTest/QtTest>

using namespace kelp;
using kelp::test::RecordingPlatform;

namespace {

#define ASK(operation)                                                                                       \
    [](UIToolkitSupport &support) {                                                                          \
        return support.operation;                                                                            \
    }
#define SWIPE_MODE(text) "warning: setSwipeDownMode() - " text

// The warning is of a navigator that refuses, with EPERM and, where it can give one, the reason "late".
const struct {
    bool (*ask)(UIToolkitSupport &support);
    const char *call, *warning = "";
} REQUESTS[] = {
    {ASK(poolingComplete(QChar(228))), "navigator_pooled_response(\"\xc3\xa4\")"},
    {ASK(orientationCheckResponse(QChar(228), true)),
     "navigator_orientation_check_response_id(\"\xc3\xa4\", true)"},
    {ASK(orientationCheckResponse("", false)), "navigator_orientation_check_response_id(\"\", false)"},
    {ASK(doneOrientation(QChar(228))), "navigator_done_orientation_id(\"\xc3\xa4\")"},
    {ASK(requestOrientation(Orientation::West)), "navigator_set_orientation(270)"},
    {ASK(lockOrientation()), "navigator_rotation_lock(true)"},
    {ASK(unlockOrientation()), "navigator_rotation_lock(false)"},
    {ASK(setSwipeDownMode(SwipeDownMode::OnCompletionOnly)), "navigator_stop_swipe_start()",
     SWIPE_MODE("Failed to set mode to 0 - Operation not permitted")},
    {ASK(setSwipeDownMode(SwipeDownMode::OnStartOnly)), "navigator_request_swipe_start()",
     SWIPE_MODE("Failed to set mode to 1 - Operation not permitted")},
    {ASK(setSwipeDownMode(SwipeDownMode::Type(2))), "", SWIPE_MODE("Unrecognized swipe down mode 2")},
    {ASK(setWindowCreationTimeout(5)), "navigator_extend_timeout(5)",
     "warning: Failed to set window creation timeout - late"},
};

} // namespace

class tst_UIToolkitRequests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachRequestIsOneCallAndTrueOnSuccessAlone()
    {
        UIToolkitSupport support;
        MessageLog messages;
        for (const auto &request : REQUESTS) {
            for (const int result : {TARN_SUCCESS, TARN_FAILURE, 1}) {
                const bool succeeds = result == TARN_SUCCESS && *request.call;
                RecordingPlatform::reset();
                RecordingPlatform::answer(RecordingPlatform::ANY, result, EPERM);
                RecordingPlatform::setText("navigator_extend_timeout", "late");

                QCOMPARE(request.ask(support), succeeds);
                QCOMPARE(messages.take().join('|'), succeeds ? "" : request.warning);
                const QString calls = QString::fromStdString(RecordingPlatform::takeRequests());
                const bool freesReason = !succeeds && calls.startsWith("navigator_extend");
                QCOMPARE(calls, request.call + QString(freesReason ? " tarn_free(memory)" : ""));
            }
        }
    }
};

QTEST_GUILESS_MAIN(tst_UIToolkitRequests)
#include "tst_UIToolkitRequests.moc"
