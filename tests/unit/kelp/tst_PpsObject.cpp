// SPDX-License-Identifier: Apache-2.0
// PpsObject on files of the host: the platform's calls in their order, errors, log lines, readyRead(), and what another
// thread may do while the object's own runs its event loop.

#include "MessageLog.h"
#include "PpsMaxSize.h"
#include "QtThread.h"
#include "RecordingPlatform.h"

#include <kelp/PpsObject.h>

#include <QtCore/QMetaEnum>
#include <QtCore/QRegularExpression>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using kelp::PpsObject;
using kelp::PpsOpenMode;
using kelp::test::RecordingPlatform;

namespace {

const char NO_REQUESTS[] = "";

// What was asked of the platform, with FD for the descriptor and PATH for the path.
QString requests(const QString &path = "/")
{
    QString text = QString::fromStdString(RecordingPlatform::takeRequests());
    return text.replace(path, "PATH").replace(QRegularExpression("\\((\\d+)"), "(FD");
}

const std::pair<PpsOpenMode::Types, int> MODES[] = {
    {{}, O_RDONLY},
    {PpsOpenMode::Publish, O_WRONLY},
    {PpsOpenMode::Create, O_RDONLY | O_CREAT | O_EXCL},
    {PpsOpenMode::Publish | PpsOpenMode::DeleteContents, O_WRONLY | O_TRUNC},
    {PpsOpenMode::PublishSubscribe | PpsOpenMode::Create | PpsOpenMode::DeleteContents,
     O_RDWR | O_CREAT | O_EXCL | O_TRUNC},
};

// An operation, as a text of its result.
struct Operation {
    const char *name;
    std::function<QString(PpsObject &)> run;
    const char *requests; // on an open object
    const char *failing;  // the one that the test lets fail
    const char *failure;  // the result then; with an errno in it where the operation gives one
};

QString shown(bool isDone)
{
    return isDone ? "true" : "false";
}

const Operation OPERATIONS[] = {
    {"close", [](PpsObject &o) { return shown(o.close()); }, "devicefs_close(FD)", "devicefs_close", "false"},
    {"read",
     [](PpsObject &o) {
         bool ok = true;
         const QByteArray text = o.read(&ok);
         return text + shown(ok);
     },
     "devicefs_read(FD, 32768)", "devicefs_read", "false"},
    {"write", [](PpsObject &o) { return shown(o.write("a\n")); }, "devicefs_write(FD, \"a\n\")",
     "devicefs_write", "false"},
    {"setBlocking", [](PpsObject &o) { return shown(o.setBlocking(true)); }, "devicefs_fcntl(FD, 3, 0)",
     "devicefs_fcntl", "false"},
    {"isBlocking", [](PpsObject &o) { return shown(o.isBlocking()); }, "devicefs_fcntl(FD, 3, 0)",
     "devicefs_fcntl", "false"},
    {"writeMessage", [](PpsObject &o) { return QString::number(o.writeMessage("m", "7", {})); },
     "devicefs_write(FD, \"dat:json:{}\nid::7\nmsg::m\n\")", "devicefs_write", "1"},
};

} // namespace

class tst_PpsObject : public QObject
{
    Q_OBJECT

    QTemporaryDir _directory;
    QString _path; // of a FIFO, which is opened for both directions: what is written can be read
    std::unique_ptr<MessageLog> _messages;
    std::unique_ptr<PpsObject> _object;
    int _ready = 0;

    std::function<void()> _onChild; // called when the object has a new one, where it is watched

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ChildAdded) {
            _onChild();
        }
        return false;
    }
    // Whether the last thing that the platform did was to close a descriptor.
    static bool isClosed()
    {
        const auto calls = RecordingPlatform::calls();
        return !calls.empty() && calls.back().find("devicefs_close") == 0;
    }
    bool open() { return _object->open(PpsOpenMode::PublishSubscribe); }
    // Runs a function on another thread while this one runs its event loop.
    void elsewhere(const std::function<void()> &function)
    {
        std::atomic<bool> isDone{false};
        const QtThread thread([&](QtThread &self) {
            self.setObjectName("other");
            function();
            isDone = true;
        });
        QTRY_VERIFY(isDone);
    }
    // Whether an operation on the other thread has left its line, and nothing else.
    bool warned(const char *what)
    {
        const QString line = _messages->take().join('\n').remove(QRegularExpression("0x[0-9a-f]+|\\d+$"));
        return line ==
               QString(
                   "warning: PpsObject %1 on QThread: \" (\"other\")\" but this object's QThread affinity "
                   "is: \" (\"own\")\" path: \"%2\" fd: %3")
                   .arg(what, _path, QString(what).startsWith("open") ? "-" : "");
    }

private Q_SLOTS:
    void initTestCase()
    {
        // When the library was loaded.
        QCOMPARE(RecordingPlatform::takeRequests().c_str(),
                 "devicefs_open(\"/pps/.all\", 0, 0) devicefs_close(-1)");
        QCOMPARE(kelp::PPS_MAX_SIZE, 32768);
        for (const auto &[answer, size] : {std::pair(65536, 65536), {0, 32768}, {-1, 32768}, {1, 1}}) {
            RecordingPlatform::answer("devicefs_open", 7, 0);
            RecordingPlatform::answer("devicefs_fpathconf", answer, 0);
            QCOMPARE(kelp::askPpsMaxSize(), size);
            QCOMPARE(requests("/pps/.all"),
                     "devicefs_open(\"PATH\", 0, 0) devicefs_fpathconf(FD, 23) devicefs_close(FD)");
        }
        QThread::currentThread()->setObjectName("own");
        const QMetaObject &type = PpsObject::staticMetaObject;
        QCOMPARE(type.methodCount() - type.methodOffset(), 2);
        QCOMPARE(QMetaEnum::fromType<PpsOpenMode::Type>().keyToValue("DeleteContents"), 8);
    }

    void init()
    {
        _path = _directory.filePath(QString::fromUtf8("\xc3\xa4"));
        ::unlink(_path.toUtf8());
        QCOMPARE(::mkfifo(_path.toUtf8(), 0600), 0);
        _messages = std::make_unique<MessageLog>();
        _object = std::make_unique<PpsObject>(_path);
        connect(_object.get(), &PpsObject::readyRead, this, [this] { ++_ready; });
        _ready = 0;
        RecordingPlatform::reset();
    }

    void cleanup()
    {
        _object.reset();
        QCOMPARE(_messages->take(), QStringList());
        _messages.reset();
    }

    void theModeBecomesOpenFlags()
    {
        for (const auto &[mode, flags] : MODES) {
            RecordingPlatform::answer("devicefs_open", -1, EACCES);
            QVERIFY(!_object->open(mode));
            QVERIFY(!_object->isOpen());
            QCOMPARE(_object->error(), EACCES);
            QCOMPARE(_object->errorString(), "Permission denied");
            QCOMPARE(requests(_path), QString("devicefs_open(\"PATH\", %1, 0666)").arg(flags));
        }
    }

    void everyOperationIsItsCallAndTellsOfItsFailure()
    {
        for (const Operation &operation : OPERATIONS) {
            QCOMPARE(operation.run(*_object), QString(operation.failure).replace("1", "9")); // closed
            QCOMPARE(_object->error(), EBADF);
            QCOMPARE(requests(), NO_REQUESTS);
            QVERIFY(open());
            RecordingPlatform::reset();
            RecordingPlatform::answer(operation.failing, -1, EPERM);

            QCOMPARE(operation.run(*_object), operation.failure);

            QCOMPARE(_object->error(), EPERM);
            QCOMPARE(requests(), operation.requests);
            const bool isRead = operation.name == QString("read");
            QCOMPARE(_messages->take(), isRead
                                            ? QStringList("warning: PpsObject::read failed to read pps data, "
                                                          "error  \"Operation not permitted\"")
                                            : QStringList());
            QCOMPARE(_object->isOpen(), operation.name != QString("close")); // closed whatever the result
            _object = std::make_unique<PpsObject>(_path);
            requests();
        }
    }

    void oneReadIsOnePieceAndNoneIsALackOfData()
    {
        QVERIFY(open());
        QVERIFY(_object->write("a\n") && _object->write("") && _object->write("b\n"));
        bool ok = false;
        QCOMPARE(_object->read(&ok), QByteArray("a\nb\n"));
        QVERIFY(ok);
        RecordingPlatform::answer("devicefs_read", 0, 0);
        QVERIFY(_object->read(&ok).isEmpty() && !ok);
        QCOMPARE(_object->error(), EAGAIN);
        QVERIFY(_object->read().isEmpty());
        RecordingPlatform::reset();

        QVERIFY(_object->isBlocking());
        QVERIFY(_object->setBlocking(false) && !_object->isBlocking());
        QVERIFY(_object->read(&ok).isEmpty() && !ok);
        QCOMPARE(_object->error(), EAGAIN);
        QCOMPARE(_messages->take().size(), 1);
        QVERIFY(_object->setBlocking(true) && _object->isBlocking());
    }

    void aSecondOpenAndAShortWriteFailAndAnOpenObjectCanBeRemoved()
    {
        QVERIFY(open());
        QVERIFY(!_object->open(PpsOpenMode::Publish));
        QCOMPARE(_object->error(), EBUSY);
        RecordingPlatform::answer("devicefs_write", 1, 0);
        QVERIFY(_object->write("x") && !_object->write("ab"));
        QCOMPARE(_object->error(), 0);
        QVERIFY(_object->remove() && _object->isOpen() && !_object->remove());
        QCOMPARE(_object->error(), ENOENT);
        requests();
        _object.reset();
        QCOMPARE(requests(), "devicefs_close(FD)");
    }

    void sendingOpensThenEncodesThenWritesThenCloses()
    {
        const QString opened = QString("devicefs_open(\"PATH\", %1, 0666) ").arg(O_WRONLY);
        const QVariantMap unfit = {{"a", 1ull}};
        QVERIFY(open()); // a reader, without which nobody can write to a FIFO
        _object->setReadyReadEnabled(false);
        const auto sent = [&](int expected, const QString &calls, auto &&...message) {
            requests();
            QCOMPARE(PpsObject::sendMessage(_path, message...), expected);
            QCOMPARE(requests(_path), calls);
        };
        sent(0, opened + "devicefs_write(FD, \"\xc3\xa4\") devicefs_close(FD)",
             QString::fromUtf8("\xc3\xa4"));
        sent(0, opened + "devicefs_write(FD, \"b\") devicefs_close(FD)", QByteArray("b"));
        sent(0, opened + "devicefs_write(FD, \"a:n:1\n\") devicefs_close(FD)", QVariantMap{{"a", 1}});
        sent(0, opened + "devicefs_write(FD, \"dat:json:{}\nmsg::m\n\") devicefs_close(FD)", QString("m"),
             QVariantMap());
        sent(-1, opened + "devicefs_close(FD)", unfit);
        sent(-1, opened + "devicefs_close(FD)", QVariantMap{{"a", QString(QChar(0))}});
        sent(-1, opened + "devicefs_close(FD)", QString("m"), unfit);
        sent(-1, NO_REQUESTS, QString(), QVariantMap());
        QCOMPARE(_object->writeMessage("", {}), -1);
        QCOMPARE(_object->writeMessage("m", "", {}), -1);
        QCOMPARE(_object->writeMessage("", "7", {}), -1);
        QCOMPARE(_object->writeMessage("m", unfit), -1);
        _path += "missing";
        sent(ENOENT, opened.trimmed(), unfit); // not -1: it opens first
    }

    void readyReadComesWhileThereIsDataAndItIsWanted()
    {
        _object->setReadyReadEnabled(false);
        QVERIFY(open());
        QVERIFY(_object->write("x"));
        QCoreApplication::processEvents();
        QVERIFY(!_object->isReadyReadEnabled());
        QCOMPARE(_ready, 0);

        _object->setReadyReadEnabled(true);
        QTRY_VERIFY(_ready > 2);
        _object->setReadyReadEnabled(false);
        const int before = _ready;
        QCoreApplication::processEvents();
        QCOMPARE(_ready, before);

        QVERIFY(_object->close());
        _object->setReadyReadEnabled(true); // kept for the next
        QVERIFY(open());
        QCOMPARE(_object->findChildren<QSocketNotifier *>().size(), 1);
        QVERIFY(_object->findChild<QSocketNotifier *>()->isEnabled());
    }

    void otherThreadsAreWarnedOfAndServed()
    {
        elsewhere([this] { open(); });
        QVERIFY(warned("open called"));
        elsewhere([this] { _object->write("x"); });
        QVERIFY(warned("write called"));
        QTRY_VERIFY(_ready > 0);       // opened there, watched here
        for (int i = 0; i < 10; ++i) { // with data pending, which goes with the FIFO's last descriptor
            elsewhere([this] { _object->close() && open(); });
            QCOMPARE(_messages->take().size(), 2);
            _ready = 0;
            QVERIFY(_object->isOpen() && _object->write("x"));
            QTRY_VERIFY(_ready > 0);
        }
        elsewhere([this] { _object->setReadyReadEnabled(false); });
        QCoreApplication::processEvents();
        const int before = _ready;
        QCoreApplication::processEvents();
        QCOMPARE(_ready, before);
        elsewhere([this] { _object->read(); });
        QVERIFY(warned("read called"));
        requests();

        elsewhere([this] { _object->close(); });

        QVERIFY(warned("close called"));
        QVERIFY(!_object->isOpen());
        QTRY_VERIFY(isClosed());
        QCOMPARE(requests(), "devicefs_detach(FD) devicefs_close(FD)");
        elsewhere([this] { _object->close(); }); // EBADF comes before the check
    }

    void aClosedNotifierEndsOnItsThreadWhereverTheObjectGoes()
    {
        QVERIFY(open());
        (void)QtThread([this](QtThread &) { _object->close(); }); // while no event is handled here
        QCOMPARE(_messages->take().size(), 1);
        {
            std::promise<void> moved;
            QtThread next([&](QtThread &) {
                moved.get_future().wait();
                QCoreApplication::processEvents();
                open();
            });
            _object->moveToThread(&next);
            moved.set_value();
        }
        QTRY_VERIFY(isClosed());
        // Its thread has ended: there is nobody to be told apart from.
        QVERIFY(_object->write("x") && _object->close());
    }

    void handlersMayUseTheObjectWhileItIsOpened()
    {
        _object->installEventFilter(this);
        _onChild = [this] {
            _object->setReadyReadEnabled(false);
        };
        QVERIFY(open());
        QCOMPARE(_object->findChildren<QSocketNotifier *>().size(), 1);
        QVERIFY(!_object->findChild<QSocketNotifier *>()->isEnabled());
        QVERIFY(_object->close());

        _onChild = [this] {
            _object->close();
        };
        QVERIFY(open() && !_object->isOpen());
        QCOMPARE(_object->findChildren<QSocketNotifier *>().size(), 0);
    }

    void withoutEventHandlingAllButReadyReadWorks()
    {
        bool isDone = false;
        std::thread([&] {
            PpsObject object(_path);
            isDone = object.open(PpsOpenMode::PublishSubscribe) && object.write("x") &&
                     object.read() == "x" && object.close();
        }).join();
        QVERIFY(isDone);
    }

    void anotherThreadMayDestroyTheObject()
    {
        for (const bool isOpenedThere : {false, true}) {
            auto object = std::make_unique<PpsObject>(_path);
            QVERIFY(isOpenedThere || object->open(PpsOpenMode::PublishSubscribe));
            elsewhere([&] {
                if (isOpenedThere) {
                    object->open(PpsOpenMode::PublishSubscribe);
                    _messages->take();
                }
                object.reset();
            });
            QVERIFY(warned("destroyed"));
            QTRY_VERIFY(isClosed());
            QVERIFY(open() && _object->write("x")); // the number, taken anew, is watched once
            QTRY_VERIFY(_ready > 0);
            QVERIFY(_object->close());
            _ready = 0;
            RecordingPlatform::reset();
        }
        auto closed = std::make_unique<PpsObject>(_path);
        elsewhere([&closed] { closed.reset(); });
        QVERIFY(_messages->take().value(0).endsWith(" fd: -1"));
    }
};

QTEST_GUILESS_MAIN(tst_PpsObject)
#include "tst_PpsObject.moc"
