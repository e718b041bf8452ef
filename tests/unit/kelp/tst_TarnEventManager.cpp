// SPDX-License-Identifier: Apache-2.0
// AbstractTarnEventHandler, TarnEventManager and DispatcherHook together, on one thread: which handlers see which
// events, in which order, and what is left behind.

#include "DispatcherHook.h"
#include "Handler.h"
#include "MessageLog.h"
#include "RecordingPlatform.h"
#include "TarnEventManager.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <atomic>
#include <thread>
#include <vector>

using kelp::DispatcherHook;
using kelp::test::ThreadQueue;

namespace {

class NativeFilter : public QAbstractNativeEventFilter
{
public:
    NativeFilter(const char *name, Trace &trace) : _name(name), _trace(trace) {}

    bool nativeEventFilter(const QByteArray &type, void *message, kelp::NativeEventResult *) override
    {
        _trace += type == "tarn_event_t" ? entry(_name, message) : _name + "other ";
        return swallows;
    }

    bool swallows = false;

private:
    const QByteArray _name;
    Trace &_trace;
};

// Filter functions of a thread: they have nothing but their address.
Trace *s_filterTrace = nullptr;

bool earlierFilter(void *message)
{
    *s_filterTrace += entry("earlier", message);
    return true; // which nobody minds
}

bool laterFilter(void *message)
{
    *s_filterTrace += entry("later", message);
    return true;
}

// Installs a filter function on the calling thread, and names the one before.
QByteArray setFilter(DispatcherHook::EventFilter filter)
{
    const DispatcherHook::EventFilter before = DispatcherHook::setFilter(QThread::currentThread(), filter);
    const bool isOurs = before == earlierFilter || before == laterFilter;
    return !before                                         ? "none"
           : isOurs                                        ? "the test's"
           : before == kelp::TarnEventManager::eventFilter ? "kelp's"
                                                           : "?";
}

} // namespace

class tst_TarnEventManager : public QObject
{
    Q_OBJECT

    int _argc = 0;
    std::unique_ptr<QCoreApplication> _application;
    std::unique_ptr<MessageLog> _messages;
    const ThreadQueue _queue = ThreadQueue::ofThisThread();
    Trace _trace;

    void restartApplication()
    {
        _application.reset();
        _application = std::make_unique<QCoreApplication>(_argc, nullptr);
    }
    // What is called for the events that are pending.
    Trace delivered()
    {
        const bool taken = QTest::qWaitFor([this] { return _queue.pending() == 0; });
        return taken ? std::exchange(_trace, {}) : "not delivered";
    }
    Trace deliveredFor(unsigned int code, int domain = FIRST)
    {
        return _queue.post(domain, code) ? delivered() : "not taken";
    }
    // Posts the events 1 to 50, and returns what a handler without a name makes of them.
    Trace postFifty()
    {
        Trace expected;
        for (unsigned int code = 1; code <= 50; ++code) {
            expected += _queue.post(FIRST, code) ? QByteArray::number(code) + ' ' : "not taken";
        }
        return expected;
    }

private Q_SLOTS:
    void init()
    {
        _messages = std::make_unique<MessageLog>();
        restartApplication();
        tarn_initialize();
        s_filterTrace = &_trace;
    }

    void cleanup()
    {
        tarn_shutdown();
        _trace.clear();
        QCOMPARE(setFilter(nullptr), "none"); // the last handler has taken kelp's away
        _application.reset();
        QCOMPARE(_messages->take(), QStringList());
        _messages.reset();
    }

    void handlersOfADomainAreCalledOnceEachTheLatestFirst()
    {
        Handler a("a", _trace);
        Handler b("b", _trace);
        a.subscribe(FIRST);
        b.subscribe(FIRST);
        a.subscribe(FIRST); // again: no second call, and no other place
        a.subscribe(SECOND);

        QCOMPARE(deliveredFor(1), "b1 a1 ");
        QCOMPARE(deliveredFor(2, SECOND), "a2 ");

        a.unsubscribe(FIRST); // once is enough
        b.unsubscribe(SECOND);

        QCOMPARE(deliveredFor(3), "b3 ");
        QCOMPARE(deliveredFor(4, SECOND), "a4 ");
    }

    void anyNumberOfHandlersIsCalled()
    {
        for (const int count : {16, 17, 33}) { // besides the one that destroys the last but one to be called
            std::vector<std::unique_ptr<Handler>> handlers;
            Trace expected;
            for (int i = 0; i < count; ++i) {
                handlers.push_back(std::make_unique<Handler>("h" + QByteArray::number(i) + "/", _trace));
                handlers.back()->subscribe(FIRST);
                expected.prepend(i == 1 ? "" : "h" + QByteArray::number(i) + "/7 ");
            }
            Handler destroyer("", _trace, [&](unsigned int) { handlers[1].reset(); });
            destroyer.subscribe(FIRST);

            QCOMPARE(deliveredFor(7), "7 " + expected);
        }
    }

    void thePreviousFilterSeesEveryEventAndItsAnswerIsIgnored()
    {
        NativeFilter behind("behind", _trace); // called after the library's, and only if that answers false
        _application->installNativeEventFilter(&behind);
        QCOMPARE(setFilter(earlierFilter), "none");
        Handler handler("handler", _trace);
        handler.subscribe(FIRST);

        QCOMPARE(deliveredFor(1), "handler1 earlier1 behind1 ");
        QCOMPARE(deliveredFor(2, SECOND), "earlier2 behind2 ");

        kelp::NativeEventResult result = 0;
        QAbstractEventDispatcher::instance()->filterNativeEvent("another_event_t", nullptr, &result);
        QCOMPARE(_trace, "behindother ");
        handler.unsubscribe(FIRST);
        QCOMPARE(setFilter(nullptr), "the test's");
    }

    void thePreviousFilterComesBackOverOneThatWasSetInBetween()
    {
        for (const char *const end : {"unsubscribed", "destroyed", "destroyed on another thread"}) {
            setFilter(earlierFilter);
            auto last = std::make_unique<Handler>("last", _trace);
            Handler other("other", _trace);
            last->subscribe(FIRST);
            last->subscribe(SECOND);
            other.subscribe(FIRST);
            QCOMPARE(setFilter(laterFilter), "kelp's");

            other.unsubscribe(FIRST);
            QCOMPARE(deliveredFor(1), "later1 ");
            last->unsubscribe(SECOND);
            end == QByteArray("unsubscribed") ? last->unsubscribe(FIRST)
            : end == QByteArray("destroyed")  ? last.reset()
                                              : std::thread([&last] { last.reset(); }).join();

            QCOMPARE(deliveredFor(2), "earlier2 ");
            setFilter(nullptr);
        }
    }

    void aHandlerDestroyedDuringTheDispatchIsSkippedAnUnsubscribedOneIsNot()
    {
        for (const bool elsewhere : {false, true}) { // on another thread, for which the dispatch waits
            Handler unsubscribed("unsubscribed", _trace);
            auto destroyed = std::make_unique<Handler>("destroyed", _trace);
            std::atomic<bool> isDone{false}; // relaxed: nothing but the library orders the two threads
            const auto destroy = [&] {
                destroyed.reset();
                isDone.store(true, std::memory_order_relaxed);
            };
            std::thread thread;
            Handler actor("actor", _trace, [&](unsigned int code) {
                unsubscribed.unsubscribe(FIRST);
                if (code == 1) {
                    elsewhere ? thread = std::thread(destroy), void() : destroy();
                }
                while (!isDone.load(std::memory_order_relaxed)) {
                    std::this_thread::yield();
                }
            });
            unsubscribed.subscribe(FIRST);
            destroyed->subscribe(FIRST);
            destroyed->subscribe(SECOND);
            actor.subscribe(FIRST);

            const Trace during = deliveredFor(1);
            if (elsewhere) {
                thread.join();
            }
            QCOMPARE(during, "actor1 unsubscribed1 ");
            QCOMPARE(deliveredFor(2), "actor2 ");
            QCOMPARE(deliveredFor(3, SECOND), "");
        }
    }

    void aHandlerDestroyedInANestedLoopIsSkippedInTheOuterDispatch()
    {
        auto destroyed = std::make_unique<Handler>("destroyed", _trace);
        Handler actor("actor", _trace, [&](unsigned int code) {
            code == 1 ? QCoreApplication::processEvents() : destroyed.reset();
        });
        destroyed->subscribe(FIRST);
        actor.subscribe(FIRST);

        _queue.post(FIRST, 1);
        QCOMPARE(deliveredFor(2), "actor1 actor2 ");
    }

    void changesFromInsideAHandlerCountFromTheNextEvent()
    {
        setFilter(earlierFilter);
        Handler newcomer("newcomer", _trace);
        Handler *self = nullptr;
        Handler leaver("leaver", _trace, [&](unsigned int code) {
            self->unsubscribe(FIRST); // the last one: its manager goes during its own dispatch
            if (code == 3) {
                newcomer.subscribe(FIRST);
            }
        });
        self = &leaver;
        leaver.subscribe(FIRST);

        _queue.post(FIRST, 1);
        QCOMPARE(deliveredFor(2), "leaver1 earlier1 earlier2 ");
        leaver.subscribe(FIRST);
        _queue.post(FIRST, 3);
        QCOMPARE(deliveredFor(4), "leaver3 earlier3 newcomer4 earlier4 ");

        newcomer.unsubscribe(FIRST);
        QCOMPARE(setFilter(nullptr), "the test's");
    }

    void aSubscriptionBeforeTheQueueIsInitialisedReceives()
    {
        tarn_shutdown();
        Handler handler("handler", _trace);
        handler.subscribe(FIRST);
        QCOMPARE(deliveredFor(1), "not taken");

        tarn_initialize();

        QCOMPARE(deliveredFor(2), "handler2 ");
    }

    void nativeEventFiltersSeeTheEventsAndMaySwallowOne()
    {
        NativeFilter older("older", _trace);
        NativeFilter newer("newer", _trace);
        _application->installNativeEventFilter(&older);
        Handler handler("handler", _trace);
        handler.subscribe(FIRST);
        _application->installNativeEventFilter(&newer);

        older.swallows = true; // after the handlers: too late to matter
        QCOMPARE(deliveredFor(1), "newer1 handler1 older1 ");
        newer.swallows = true; // before them: as with every native event
        QCOMPARE(deliveredFor(2), "newer2 ");
        newer.swallows = false;
        QCOMPARE(deliveredFor(3), "newer3 handler3 older3 ");
    }

    void nestedEventLoopsDeliverEachEventOnceInOrder()
    {
        int depth = 0;
        int deepest = 0;
        Handler handler("", _trace, [&](unsigned int code) {
            deepest = std::max(deepest, ++depth);
            if (code % 10 < 4) {
                QCoreApplication::processEvents();
            }
            --depth;
        });
        handler.subscribe(FIRST);
        const Trace expected = postFifty();

        QCOMPARE(delivered(), expected);
        QVERIFY(deepest > 3);
    }

    void quittingFromAHandlerLeavesTheLoopSoonAndLosesNoEvent()
    {
        Handler handler("", _trace, [](unsigned int code) {
            if (code == 2) {
                QCoreApplication::quit();
            }
        });
        handler.subscribe(FIRST);
        const Trace expected = postFifty();

        QCOMPARE(QCoreApplication::exec(), 0);

        QVERIFY(_queue.pending() > 0);
        QCOMPARE(delivered(), expected);
    }

    void aHandlerOutlivesTheApplicationObject()
    {
        auto gone = std::make_unique<Handler>("gone", _trace);
        Handler stale("stale", _trace);
        gone->subscribe(FIRST);
        stale.subscribe(FIRST);
        _application.reset();
        gone.reset(); // without any application object
        restartApplication();

        // The manager has outlived its dispatcher: nobody watches the queue for the new one.
        _queue.post(FIRST, 1);
        QCoreApplication::processEvents();
        QCOMPARE(_queue.pending(), std::size_t(1));
        stale.unsubscribe(FIRST);
        Handler fresh("fresh", _trace);
        fresh.subscribe(FIRST);

        QCOMPARE(deliveredFor(2), "fresh1 fresh2 ");
    }
};

QTEST_APPLESS_MAIN(tst_TarnEventManager)
#include "tst_TarnEventManager.moc"
