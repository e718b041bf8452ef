// SPDX-License-Identifier: Apache-2.0
// What does an event cost on its way from a descriptor to a handler, through the event loop?
//
// Measures the whole way of a platform event on one thread: made, pushed to the thread's queue, its
// descriptor noticed by the Qt loop, taken, filtered, handled, destroyed; with one event in flight, and in
// bursts of 64. Beside it, an eventfd through QSocketNotifier (the peer) and through a GLib source that may
// recurse, as those of Qt's GLib loop do. Their bursts are one write to an eventfd that counts, of which each
// wake-up takes one.
//
// Guards: at most 1.3 times QSocketNotifier. Run it without arguments; with QT_NO_GLIB=1 for Qt's own event
// loop.

#include "Calls.h"

#include "platform/link/UniqueFd.h"

#include <kelp/AbstractTarnEventHandler.h>
#include <tarn/tarn.h>

#include <glib-unix.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <system_error>

#include <sys/eventfd.h>

using namespace kelp::bench;

namespace {

void check(bool succeeded, const char *call)
{
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

// Sends a burst and turns the event loop until all of it has arrived. (A handler that sent the next event
// itself would not do: it can be taken in the same wake-up, and then no descriptor is waited for.)
class Traffic
{
public:
    virtual ~Traffic() = default;

    void exchange(int burst)
    {
        _pending = burst;
        send(burst);
        while (_pending > 0) {
            turnLoop();
        }
    }

protected:
    void arrived() { --_pending; }
    virtual void turnLoop() { _loop.processEvents(QEventLoop::WaitForMoreEvents); }

private:
    virtual void send(int events) = 0;

    QEventLoop _loop;
    int _pending = 0; // events that have not arrived
};

class PlatformEvents : public Traffic, private kelp::AbstractTarnEventHandler
{
public:
    PlatformEvents()
    {
        check(tarn_initialize() == TARN_SUCCESS, "tarn_initialize");
        subscribe(_domain);
    }
    ~PlatformEvents() override { tarn_shutdown(); }

private:
    bool event(tarn_event_t *) override
    {
        arrived();
        return true;
    }
    void send(int events) override
    {
        for (int i = 0; i < events; ++i) {
            tarn_event_t *event = nullptr;
            check(tarn_event_create(&event, _domain, 1, nullptr, nullptr) == TARN_SUCCESS,
                  "tarn_event_create");
            check(tarn_event_push(_queue, event) == TARN_SUCCESS, "tarn_event_push");
        }
    }

    const int _domain = tarn_register_domain();
    const int _queue = tarn_queue_id();
};

class CountingDescriptor : public Traffic
{
protected:
    int descriptor() const { return _descriptor.get(); }
    void takeOne()
    {
        std::uint64_t one = 0;
        check(::read(descriptor(), &one, sizeof one) == sizeof one, "read");
        arrived();
    }

private:
    void send(int events) override
    {
        const auto count = static_cast<std::uint64_t>(events);
        check(::write(descriptor(), &count, sizeof count) == sizeof count, "write");
    }

    kelp::link::UniqueFd _descriptor{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE)};
};

class SocketNotifier : public CountingDescriptor
{
public:
    SocketNotifier()
    {
        QObject::connect(&_notifier, &QSocketNotifier::activated, &_notifier, [this] { takeOne(); });
    }

private:
    QSocketNotifier _notifier{descriptor(), QSocketNotifier::Read};
};

class GlibSource : public CountingDescriptor
{
public:
    GlibSource()
    {
        const GUnixFDSourceFunc callback = [](gint, GIOCondition, gpointer self) -> gboolean {
            static_cast<GlibSource *>(self)->takeOne();
            return G_SOURCE_CONTINUE;
        };
        g_source_set_callback(_source.get(), G_SOURCE_FUNC(callback), this, nullptr);
        g_source_set_can_recurse(_source.get(), TRUE);
        g_source_attach(_source.get(), _context.get());
    }

private:
    template <typename T>
    using Owner = std::unique_ptr<T, void (*)(T *)>;

    void turnLoop() override { g_main_context_iteration(_context.get(), TRUE); }

    Owner<GMainContext> _context{g_main_context_new(), g_main_context_unref};
    Owner<GSource> _source{g_unix_fd_source_new(descriptor(), G_IO_IN), g_source_unref};
};

template <typename T>
void add(Samples &samples, const std::string &name, int burst)
{
    measure(name + ", " + std::to_string(burst), samples, [burst](benchmark::State &state) {
        T traffic;
        while (state.KeepRunningBatch(burst)) {
            traffic.exchange(burst);
        }
    });
}

Comparison compare(const std::string &pattern, int burst)
{
    const char *loop = qEnvironmentVariableIsEmpty("QT_NO_GLIB") ? "GLib" : "Qt's own";
    Comparison comparison(std::string("queue, ") + loop + " loop, " + pattern, "ns");
    add<PlatformEvents>(comparison.add("platform event", {1.3, 0}), "platform event", burst);
    add<SocketNotifier>(comparison.addPeer("QSocketNotifier"), "QSocketNotifier", burst);
    add<GlibSource>(comparison.add("GLib source"), "GLib source", burst);
    return comparison;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const Comparison comparisons[] = {compare("one in flight", 1), compare("64 pending", 64)};
    runCalls();
    for (const Comparison &comparison : comparisons) {
        comparison.print();
    }
}
