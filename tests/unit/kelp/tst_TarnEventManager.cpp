// SPDX-License-Identifier: Apache-2.0
// AbstractTarnEventHandler, TarnEventManager and DispatcherHook together: which handlers see which events, on which
// thread, in which order, and what is left behind.

#include "DispatcherHook.h"
#include "MessageLog.h"
#include "QtThread.h"
#include "RecordingPlatform.h"
#include "TarnEventManager.h"

#include <kelp/AbstractTarnEventHandler.h>

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtTest/QtTest>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

using kelp::DispatcherHook;
using kelp::test::RecordingPlatform;
using kelp::test::ThreadQueue;

namespace {

const int FIRST = tarn_register_domain();
const int SECOND = tarn_register_domain();

// What was called for which event: a name and the event's code, for each call.
using Trace = QByteArray;

Trace entry(const QByteArray &name, const void *event)
{
    return name + QByteArray::number(tarn_event_get_code(static_cast<const tarn_event_t *>(event))) + ' ';
}

class Handler : public kelp::AbstractTarnEventHandler
{
public:
    using Action = std::function<void(unsigned int code)>;

    Handler(
        const QByteArray &name, Trace &trace, Action action = [](unsigned int) {})
        : _name(name),
          _trace(trace),
          _action(action)
    {}

    bool event(tarn_event_t *event) override
    {
        const Trace before = entry(_name, event);
        _trace += before;
        _action(tarn_event_get_code(event));
        _trace += entry(_name, event) == before ? "" : "changed ";
        return true; // which nobody minds
    }

private:
    const QByteArray _name;
    Trace &_trace;
    const Action _action;
};

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
                code > 1 ? void() : elsewhere ? void(thread = std::thread(destroy)) : destroy();
                while (!isDone.load(std::memory_order_relaxed)) {
                    std::this_thread::yield();
                }
            });
            unsubscribed.subscribe(FIRST);
            destroyed->subscribe(FIRST);
            destroyed->subscribe(SECOND);
            actor.subscribe(FIRST);

            QCOMPARE(deliveredFor(1), "actor1 unsubscribed1 ");
            elsewhere ? thread.join() : void();
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
            code == 1 ? void() : newcomer.subscribe(FIRST);
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
            code % 10 < 4 ? QCoreApplication::processEvents() : void();
            --depth;
        });
        handler.subscribe(FIRST);
        const Trace expected = postFifty();

        QCOMPARE(delivered(), expected);
        QVERIFY(deepest > 3);
    }

    void quittingFromAHandlerLeavesTheLoopSoonAndLosesNoEvent()
    {
        Handler handler("", _trace, [](unsigned int code) { code == 2 ? QCoreApplication::quit() : void(); });
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

        _queue.post(FIRST,
                    1); // the manager has outlived its dispatcher: nobody watches the queue for the new one
        QCoreApplication::processEvents();
        QCOMPARE(_queue.pending(), std::size_t(1));
        stale.unsubscribe(FIRST);
        Handler fresh("fresh", _trace);
        fresh.subscribe(FIRST);

        QCOMPARE(deliveredFor(2), "fresh1 fresh2 ");
    }

    void eventsReachTheHandlersOfTheirThreadOnly()
    {
        Handler handler("main", _trace);
        handler.subscribe(FIRST);
        for (const bool isAdopted : {false, true}) {
            Trace trace;
            std::promise<ThreadQueue> promise;
            const auto serve = [&](QtThread *self) {
                std::unique_ptr<QEventLoop> loop(self ? nullptr : new QEventLoop);
                tarn_initialize();
                Handler worker("worker", trace, [&](unsigned int code) {
                    code < 3 ? void() : self ? self->quit() : loop->quit();
                });
                worker.subscribe(FIRST);
                handler.unsubscribe(FIRST); // of the main thread: not from here
                promise.set_value(ThreadQueue::ofThisThread());
                self ? self->exec() : loop->exec();
                tarn_shutdown();
            };
            std::thread adopted([&] { isAdopted ? serve(nullptr) : void(); });
            {
                const QtThread thread([&](QtThread &self) { isAdopted ? void() : serve(&self); });
                const ThreadQueue queue = promise.get_future().get();
                QVERIFY(queue.post(FIRST, 1) && queue.post(SECOND, 2) && queue.post(FIRST, 3));
                adopted.join();
            }

            QCOMPARE(trace, "worker1 worker3 ");
            QCOMPARE(deliveredFor(4), "main4 ");
        }
    }

    void aThreadWithoutADispatcherReceivesOnceItHasOneAndSubscribesAnew()
    {
        Trace trace;
        std::thread([&trace] {
            tarn_initialize();
            Handler handler("handler", trace);
            handler.subscribe(FIRST);
            ThreadQueue::ofThisThread().post(FIRST, 1);
            QEventLoop loop;
            loop.processEvents();
            trace += "again ";
            handler.unsubscribe(FIRST);
            handler.subscribe(FIRST);
            loop.processEvents();
            tarn_shutdown();
        }).join();

        QCOMPARE(trace, "again handler1 ");
    }

    void aHandlerOutlivesItsThread()
    {
        Handler handler("handler", _trace);
        {
            const QtThread thread([&](QtThread &) { handler.subscribe(FIRST); });
        }
        handler.subscribe(FIRST); // on this thread too

        QCOMPARE(deliveredFor(1), "handler1 ");
    }

    void handlersAndThreadsGoWhileOthersWork()
    {
        for (int round = 0; round < 20; ++round) {
            std::array<std::unique_ptr<Handler>, 3> handlers;
            std::array<std::promise<ThreadQueue>, 3> promises;
            std::vector<std::unique_ptr<QtThread>> threads;
            for (std::size_t i = 0; i < handlers.size(); ++i) {
                handlers[i] = std::make_unique<Handler>("handler", _trace);
                threads.push_back(std::make_unique<QtThread>([&, i](QtThread &self) {
                    tarn_initialize();
                    handlers[i]->subscribe(FIRST);
                    promises[i].set_value(ThreadQueue::ofThisThread());
                    self.exec();
                    tarn_shutdown();
                }));
            }
            for (std::size_t i = 0; i < handlers.size(); ++i) {
                const ThreadQueue queue = promises[i].get_future().get();
                for (unsigned int code = 0; code < 5; ++code) {
                    queue.post(SECOND, code);
                }
                handlers[i].reset(); // the filter of a thread that is working goes
                threads[i]->quit();
            }
        }
        QCOMPARE(_trace, "");
    }

    void manyEventsFromManyThreadsArriveOnceEachInTheOrderOfTheirSender();
};

namespace {

constexpr unsigned int SENDERS = 4;
constexpr unsigned int RECEIVERS = 3;
constexpr unsigned int EVENTS_PER_SENDER = 2500;

// Receives every third event of each sender: 0, 3, 6 ... as the first receiver, 1, 4, 7 ... as the next.
class Receiver : public kelp::AbstractTarnEventHandler
{
public:
    Receiver(unsigned int first, int firstDomain, QThread &thread)
        : _firstDomain(firstDomain),
          _thread(thread)
    {
        _next.fill(first);
        for (unsigned int sender = 0; sender < SENDERS; ++sender) {
            subscribe(firstDomain + int(sender));
        }
    }

    bool event(tarn_event_t *event) override
    {
        unsigned int &next = _next.at(std::size_t(tarn_event_get_domain(event) - _firstDomain));
        faults += tarn_event_get_code(event) != next;
        next += RECEIVERS;
        if (++received % 16 == 0) {
            Handler passing("", _trace); // comes and goes while other threads look for their handlers
            passing.subscribe(FIRST);
        }
        if (std::all_of(_next.begin(), _next.end(),
                        [](unsigned int code) { return code >= EVENTS_PER_SENDER; })) {
            _thread.quit();
        }
        return false;
    }

    unsigned int received = 0;
    unsigned int faults = 0;

private:
    const int _firstDomain;
    QThread &_thread;
    std::array<unsigned int, SENDERS> _next = {}; // the code expected from each
    Trace _trace;
};

} // namespace

void tst_TarnEventManager::manyEventsFromManyThreadsArriveOnceEachInTheOrderOfTheirSender()
{
    const int firstDomain = tarn_register_domain();
    std::array<std::promise<ThreadQueue>, RECEIVERS> promises;
    std::atomic<unsigned int> received{0};
    std::atomic<unsigned int> faults{0};
    std::vector<std::unique_ptr<QtThread>> receivers;
    std::vector<ThreadQueue> queues;
    for (unsigned int i = 0; i < RECEIVERS; ++i) {
        receivers.push_back(std::make_unique<QtThread>([&, i](QtThread &self) {
            tarn_initialize();
            Receiver receiver(i, firstDomain, self);
            promises[i].set_value(ThreadQueue::ofThisThread());
            self.exec();
            received += receiver.received;
            faults += receiver.faults + unsigned(ThreadQueue::ofThisThread().pending());
            tarn_shutdown();
        }));
        queues.push_back(promises[i].get_future().get());
    }

    std::vector<std::thread> senders;
    for (unsigned int sender = 0; sender < SENDERS; ++sender) {
        senders.emplace_back([&queues, domain = firstDomain + int(sender)] {
            for (unsigned int code = 0; code < EVENTS_PER_SENDER; ++code) {
                queues[code % RECEIVERS].post(domain, code);
            }
        });
    }
    for (std::thread &sender : senders) {
        sender.join();
    }
    receivers.clear(); // waits for the threads

    QCOMPARE(faults.load(), 0u);
    QCOMPARE(received.load(), SENDERS * EVENTS_PER_SENDER);
    RecordingPlatform::reset(); // of some ten thousand calls
}

QTEST_APPLESS_MAIN(tst_TarnEventManager)
#include "tst_TarnEventManager.moc"
