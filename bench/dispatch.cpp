// SPDX-License-Identifier: Apache-2.0
// What does it cost to hand one platform event to the handlers of its thread?
//
// Measures the event manager's filter with 1, 4 and 16 subscribed handlers, beside as many calls through: a
// direct connection of a Qt signal to slots (the peer), a loop of virtual calls over a shared snapshot of a
// list, and QCoreApplication::sendEvent() past event filters.
//
// Guards: with 1 handler at most 40 ns; with 16 no slower than the Qt signal. Run it without arguments.

#include "Calls.h"

#include "TarnEventManager.h"

#include <kelp/AbstractTarnEventHandler.h>
#include <tarn/tarn.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <memory>

using namespace kelp;
using namespace kelp::bench;

namespace {

struct CountingHandler : AbstractTarnEventHandler {
    bool event(tarn_event_t *) override { return ++count; }
    quint64 count = 0;
};

struct CountingFilter : QObject {
    bool eventFilter(QObject *, QEvent *) override { return !++count; }
    quint64 count = 0;
};

class Sender : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void sent(void *event);
};

class Receiver : public QObject
{
    Q_OBJECT
public Q_SLOTS:
    void receive(void *) { ++_count; }

private:
    quint64 _count = 0;
};

void eventManager(benchmark::State &state, std::size_t count)
{
    const int domain = tarn_register_domain();
    tarn_event_t *event = nullptr;
    std::vector<CountingHandler> handlers(count);
    for (CountingHandler &handler : handlers) {
        handler.subscribe(domain);
    }
    if (tarn_event_create(&event, domain, 1, nullptr, nullptr) != TARN_SUCCESS) {
        return state.SkipWithError("no event");
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(TarnEventManager::eventFilter(event));
    }
    tarn_event_destroy(event);
    if (handlers.back().count != static_cast<quint64>(state.iterations())) {
        state.SkipWithError("events were lost");
    }
}

using HandlerList = std::vector<AbstractTarnEventHandler *>;

// Out of line, so that the compiler cannot see which handlers there are.
[[gnu::noinline]] void callAll(const std::shared_ptr<const HandlerList> &handlers)
{
    const std::shared_ptr<const HandlerList> snapshot = handlers;
    for (AbstractTarnEventHandler *handler : *snapshot) {
        handler->event(nullptr);
    }
}

void virtualCalls(benchmark::State &state, std::size_t count)
{
    std::vector<CountingHandler> handlers(count);
    HandlerList list;
    for (CountingHandler &handler : handlers) {
        list.push_back(&handler);
    }
    const auto shared = std::make_shared<const HandlerList>(list);
    for (auto _ : state) {
        callAll(shared);
    }
}

void qtSignal(benchmark::State &state, std::size_t count)
{
    Sender sender;
    const std::vector<Receiver> receivers(count);
    for (const Receiver &receiver : receivers) {
        QObject::connect(&sender, &Sender::sent, &receiver, &Receiver::receive, Qt::DirectConnection);
    }
    for (auto _ : state) {
        Q_EMIT
        sender.sent(nullptr);
    }
}

void eventFilters(benchmark::State &state, std::size_t count)
{
    QObject target;
    std::vector<CountingFilter> filters(count);
    for (CountingFilter &filter : filters) {
        target.installEventFilter(&filter);
    }
    for (auto _ : state) {
        QEvent event(QEvent::User);
        QCoreApplication::sendEvent(&target, &event);
    }
}

Comparison compare(std::size_t count, Target target)
{
    const std::string handlers = std::to_string(count) + (count == 1 ? " handler" : " handlers");
    Comparison comparison("dispatch, " + handlers, "ns");
    const auto add = [&](Samples &samples, const std::string &name, auto work) {
        measure(name + ", " + handlers, samples, [=](benchmark::State &state) { work(state, count); });
    };
    add(comparison.add("event manager", target), "event manager", eventManager);
    add(comparison.addPeer("Qt signal"), "Qt signal", qtSignal);
    add(comparison.add("virtual calls"), "virtual calls", virtualCalls);
    add(comparison.add("event filters"), "event filters", eventFilters);
    return comparison;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const Comparison comparisons[] = {compare(1, {0, 40}), compare(4, {}), compare(16, {1, 0})};
    runCalls();
    for (const Comparison &comparison : comparisons) {
        comparison.print();
    }
}

#include "dispatch.moc"
