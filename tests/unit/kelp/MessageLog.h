// SPDX-License-Identifier: Apache-2.0
// Collects what passes through Qt's message handler while it exists, from all threads, as "severity: text".
#pragma once

#include <QtCore/QStringList>

#include <mutex>
#include <utility>

class MessageLog
{
public:
    MessageLog() : _previous(qInstallMessageHandler(note)) { s_log = this; }
    ~MessageLog() { qInstallMessageHandler(_previous); }
    Q_DISABLE_COPY(MessageLog)

    // The lines since the last call.
    QStringList take()
    {
        const std::lock_guard lock(_mutex);
        return std::exchange(_lines, {});
    }

private:
    static void note(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        if (type == QtFatalMsg) {
            s_log->_previous(type, context, text);
        }
        const char *severity = type == QtWarningMsg    ? "warning: "
                               : type == QtCriticalMsg ? "critical: "
                                                       : "other: ";
        const std::lock_guard lock(s_log->_mutex);
        // Some versions of Qt end the line with one space.
        s_log->_lines += QLatin1String(severity) + (text.endsWith(' ') ? text.chopped(1) : text);
    }

    static inline MessageLog *s_log = nullptr;
    const QtMessageHandler _previous;
    std::mutex _mutex; // guards the lines
    QStringList _lines;
};
