// SPDX-License-Identifier: Apache-2.0
// An event handler that writes down what it is called for, and does what the test has given it to do.
#pragma once

#include <kelp/AbstractTarnEventHandler.h>

#include <tarn/tarn.h>

#include <QtCore/QByteArray>

#include <functional>

inline const int FIRST = tarn_register_domain();
inline const int SECOND = tarn_register_domain();

// What was called for which event: a name and the event's code, for each call.
using Trace = QByteArray;

inline Trace entry(const QByteArray &name, const void *event)
{
    return name + QByteArray::number(tarn_event_get_code(static_cast<const tarn_event_t *>(event))) + ' ';
}

class Handler : public kelp::AbstractTarnEventHandler
{
public:
    using Action = std::function<void(unsigned int code)>;

    Handler(const QByteArray &name, Trace &trace, Action action = {})
        : _name(name),
          _trace(trace),
          _action(action)
    {}

    bool event(tarn_event_t *event) override
    {
        const Trace before = entry(_name, event);
        _trace += before;
        if (_action) {
            _action(tarn_event_get_code(event));
        }
        _trace += entry(_name, event) == before ? "" : "changed ";
        return true; // which nobody minds
    }

private:
    const QByteArray _name;
    Trace &_trace;
    const Action _action;
};
