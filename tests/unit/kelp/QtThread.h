// SPDX-License-Identifier: Apache-2.0
// A QThread that runs a function, and waits for its end when it is destroyed.
#pragma once

#include <QtCore/QThread>

#include <functional>
#include <future>

class QtThread : public QThread
{
public:
    explicit QtThread(std::function<void(QtThread &)> body) : _body(std::move(body)) { start(); }
    ~QtThread() override
    {
        _done.get_future().wait(); // a hand-over that the thread sanitizer sees
        wait();
    }
    using QThread::exec;

protected:
    void run() override
    {
        _body(*this);
        _done.set_value();
    }

private:
    const std::function<void(QtThread &)> _body;
    std::promise<void> _done;
};
