// SPDX-License-Identifier: Apache-2.0
// AbstractTarnEventHandler, TarnEventManager and DispatcherHook together, on several threads.

#include "Handler.h"
#include "QtThread.h"
#include "RecordingPlatform.h"

#include <QtCore/QEventLoop>
#include <QtTest/QtTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <thread>
#include <vector>

using kelp::test::RecordingPlatform;
using kelp::test::ThreadQueue;

class tst_TarnEventManagerThreads : public QObject
{
    Q_OBJECT

    const ThreadQueue _queue = ThreadQueue::ofThisThread();
    Trace _trace;

    Trace deliveredFor(unsigned int code)
    {
        const bool taken =
            _queue.post(FIRST, code) && QTest::qWaitFor([this] { return _queue.pending() == 0; });
        return taken ? std::exchange(_trace, {}) : "not delivered";
    }

private Q_SLOTS:
    void initTestCase() { tarn_initialize(); }
    void cleanup() { RecordingPlatform::reset(); } // of some ten thousand calls
    void cleanupTestCase() { tarn_shutdown(); }

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
                    if (code == 3) {
                        self ? self->quit() : loop->quit();
                    }
                });
                worker.subscribe(FIRST);
                handler.unsubscribe(FIRST); // of the main thread: not from here
                promise.set_value(ThreadQueue::ofThisThread());
                self ? self->exec() : loop->exec();
                tarn_shutdown();
            };
            std::thread adopted;
            std::unique_ptr<QtThread> thread;
            if (isAdopted) {
                adopted = std::thread(serve, nullptr);
            } else {
                thread = std::make_unique<QtThread>([&serve](QtThread &self) { serve(&self); });
            }
            const ThreadQueue queue = promise.get_future().get();
            QVERIFY(queue.post(FIRST, 1) && queue.post(SECOND, 2) && queue.post(FIRST, 3));
            isAdopted ? adopted.join() : thread.reset();

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

void tst_TarnEventManagerThreads::manyEventsFromManyThreadsArriveOnceEachInTheOrderOfTheirSender()
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
}

QTEST_GUILESS_MAIN(tst_TarnEventManagerThreads)
#include "tst_TarnEventManagerThreads.moc"
