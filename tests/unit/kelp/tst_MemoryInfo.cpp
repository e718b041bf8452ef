// SPDX-License-Identifier: Apache-2.0
// MemoryInfo: what low-memory events become, and where the figures come from.

#include "MessageLog.h"
#include "MethodList.h"
#include "QtThread.h"
#include "RecordingPlatform.h"

#include <kelp/MemoryInfo.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QtTest>

#include <cstddef>
#include <memory>

using kelp::MemoryInfo;
using kelp::test::RecordingPlatform;
using kelp::test::ThreadQueue;
using Level = kelp::LowMemoryWarningLevel::Type;

namespace {

constexpr auto LEVEL = QOverload<Level>::of(&MemoryInfo::lowMemory);
constexpr auto NUMBER = QOverload<int>::of(&MemoryInfo::lowMemory);

static_assert(offsetof(syspage, address_space) == 12 && offsetof(syspage, strings) == 48);
static_assert(offsetof(syspage_address_range, name) == 18 && sizeof(syspage_address_range) == 32);

struct {
    syspage header;
    syspage_address_range ranges[6];
    char names[16];
} s_page = {{64, 272, {}, {64, 0}, {}, {256, 16}, {}},
            {{0x1000, 0x1fff, 0, 0, {}},
             {0, 1, 0, 4, {}},
             {0, 1, 0, 9, {}},
             {0, 1, 0, 12, {}},
             {0x80000000, 0x27fffffff, 0, 0, {}},                 // above 4 GiB
             {0xfffffffffffff000, 0xffffffffffffffff, 0, 0, {}}}, // to the top
            "ram\0ram2\0ra\0io"};

// By the size of the table.
const std::pair<int, qint64> TOTALS[] = {{0, 0},      {31, 0},           {32, 4096},
                                         {128, 4096}, {160, 8589938688}, {192, 8589942784}};

// The call of devicefs.h that fails, how many calls there are then, and the end of the warning.
const struct {
    const char *failing;
    int nth, calls;
    const char *complaint;
    qint64 size;
} FILES[] = {{"devicefs_access", 1, 1, "does not exist.", -1},
             {"devicefs_access", 2, 2, "not readable.", -1},
             {"devicefs_size", 1, 3, "", -1}, // gone since
             {"none", 1, 3, "", 5368709120}}; // above 4 GiB

// What is logged for an event, each line ended by a bar.
QString lines(int severity, int level, int receivers)
{
    const QString unexpected =
        "warning: MemoryInfoPrivate::severityToWarningLevel() - Unexpected severity value ( "
        "%1 ) treated as low priority|";
    return QString("warning: MemoryInfoPrivate::event - Low memory %1|").arg(severity) +
           (severity == level ? QString() : unexpected.arg(severity)) +
           QString(
               "critical: Process %1 dispatched low memory signal, priority = %2 number of receivers = %3|")
               .arg(QCoreApplication::applicationPid())
               .arg(level)
               .arg(receivers);
}

void logSignals(const MemoryInfo &info)
{
    QObject::connect(&info, LEVEL, [](int level) { qInfo() << "level" << level; });
    QObject::connect(&info, NUMBER, [](int level) { qInfo() << "number" << level; });
}

} // namespace

class tst_MemoryInfo : public QObject
{
    Q_OBJECT

    std::unique_ptr<MessageLog> _log; // of the signals as well
    const ThreadQueue _queue = ThreadQueue::ofThisThread();

    // What the pending events become.
    QString logged()
    {
        return QTest::qWaitFor([this] { return _queue.pending() == 0; }) ? _log->take().join('|') : "late";
    }

private Q_SLOTS:
    void init()
    {
        RecordingPlatform::reset();
        _log = std::make_unique<MessageLog>();
    }
    void cleanup() { _log.reset(); }

    void itSubscribesBeforeItAsksWhateverTheAnswers()
    {
        RecordingPlatform::answer("tarn_initialize", TARN_FAILURE, ENOMEM);
        RecordingPlatform::answer("navigator_request_events", TARN_FAILURE, ENOTCONN);
        QtThread([](QtThread &) { MemoryInfo(); }).wait();
        // The first subscription of a thread asks for the queue.
        const std::vector<std::string> calls{"navigator_get_domain()", "tarn_queue_descriptor()",
                                             "tarn_initialize()", "navigator_request_events(0)",
                                             "tarn_shutdown()"};
        QVERIFY(RecordingPlatform::calls() == calls);
    }

    void aSeverityIsLoggedAndBecomesTwoSignals()
    {
        const MemoryInfo info;
        logSignals(info);
        for (const auto &[severity, level] : {std::pair(0, 0), {1, 1}, {2, 2}, {3, 1}, {7, 1}, {-1, 1}}) {
            _queue.postExit(); // not heard
            _queue.postLowMemory(severity);

            QCOMPARE(logged(),
                     lines(severity, level, 2) + QString("other: level %1|other: number %1").arg(level));
        }
    }

    void eachObjectIsWarnedAndCountsItsOwnReceivers()
    {
        const MemoryInfo quiet;
        auto info = std::make_unique<MemoryInfo>();
        logSignals(*info);
        connect(info.get(), LEVEL, this, [&info] { info.reset(); });
        _queue.postLowMemory(2);

        QCOMPARE(logged() + '|',
                 lines(2, 2, 3) + "other: level 2|" + lines(2, 2, 0)); // destroyed before the number
    }

    void signalsComeOnTheObjectsThreadAndReachOthers()
    {
        const MemoryInfo here;
        logSignals(here);
        std::promise<ThreadQueue> promise;
        QtThread worker([&](QtThread &self) {
            const MemoryInfo info;
            const char *signal = SIGNAL(lowMemory(kelp::LowMemoryWarningLevel::Type));
            connect(&info, signal, &here, signal);
            connect(&info, NUMBER, [&self] {
                qInfo() << (QThread::currentThread() == &self);
                self.quit();
            });
            promise.set_value(ThreadQueue::ofThisThread());
            self.exec();
        });
        promise.get_future().get().postLowMemory(0);

        QVERIFY(worker.wait());
        QCOMPARE(_log->take().join('|'), lines(0, 0, 2) + "other: true");
        QCoreApplication::processEvents();
        QCOMPARE(_log->take().join('|'), "other: level 0"); // by way of this thread's loop
    }

    void theTotalIsTheSumOfTheRangesNamedRam()
    {
        RecordingPlatform::setSystemPage(&s_page.header);
        for (const auto &[size, total] : TOTALS) {
            s_page.header.address_space.size = quint16(size);
            QCOMPARE(MemoryInfo().totalDeviceMemory(), total);
        }
    }

    void theOtherFiguresAreSizesInProc()
    {
        const MemoryInfo info;
        const QString as = QString("/proc/%1/as").arg(QCoreApplication::applicationPid());
        const QStringList calls{"devicefs_access(\"%1\", 0)", "devicefs_access(\"%1\", 4)",
                                "devicefs_size(\"%1\")"};
        for (const auto &row : FILES) {
            for (const QString &path : {QString("/proc"), as}) {
                RecordingPlatform::reset();
                RecordingPlatform::answer("devicefs_access", 0, 0);
                RecordingPlatform::answer("devicefs_size", 5368709120, 0);
                RecordingPlatform::answer(row.failing, -1, EACCES, row.nth);

                QCOMPARE(path == as ? info.memoryUsedByCurrentProcess() : info.availableDeviceMemory(),
                         row.size);

                QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                         calls.mid(0, row.calls).join(' ').replace("%1", path));
                const QString warning = "warning: MemoryInfo::%1() failed, path \"%2\" %3";
                const QString query = path == as ? "currentProcessMemory" : "freeDeviceMemory";
                QCOMPARE(_log->take().join('|'),
                         *row.complaint ? warning.arg(query, path, row.complaint) : "");
            }
        }
    }

    void theMetaObjectsAreAsDeclared()
    {
        QCOMPARE(methodsOf(MemoryInfo::staticMetaObject),
                 "*void lowMemory(kelp::LowMemoryWarningLevel::Type) level; *void lowMemory(int) level; "
                 "qlonglong totalDeviceMemory() ; qlonglong availableDeviceMemory() ; "
                 "qlonglong memoryUsedByCurrentProcess() ; ");
        const auto levels = QMetaEnum::fromType<Level>();
        QCOMPARE(QByteArray(levels.valueToKey(0)) + levels.valueToKey(1) + levels.valueToKey(2),
                 "ClearLowPriorityHighPriority");
    }
};

QTEST_GUILESS_MAIN(tst_MemoryInfo)
#include "tst_MemoryInfo.moc"
