// SPDX-License-Identifier: Apache-2.0
// Collects the signals that an object's own class declares, in the order of their emission: "name(value, value) ...".
// Parameters may be texts, booleans, and numbers or enumerations of an int's size.
#pragma once

#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <utility>

// Without Q_OBJECT: it has a slot for each signal, behind QObject's own methods.
class SignalLog : public QObject
{
public:
    explicit SignalLog(const QObject *sender) : _class(sender->metaObject())
    {
        for (int i = _class->methodOffset(); i < _class->methodCount(); ++i) {
            if (_class->method(i).methodType() == QMetaMethod::Signal) {
                QMetaObject::connect(sender, i, this, SLOT_OFFSET + i, Qt::DirectConnection);
            }
        }
    }

    // The signals since the last call.
    QString take() { return std::exchange(_signals, {}).join(' '); }

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override
    {
        if (call != QMetaObject::InvokeMetaMethod || id < SLOT_OFFSET) {
            return QObject::qt_metacall(call, id, arguments);
        }
        const QMetaMethod signal = _class->method(id - SLOT_OFFSET);
        QStringList values;
        for (int i = 0; i < signal.parameterCount(); ++i) {
            const void *value = arguments[i + 1];
            values += signal.parameterType(i) == QMetaType::QString ? *static_cast<const QString *>(value)
                      : signal.parameterType(i) == QMetaType::Bool
                          ? QString(*static_cast<const bool *>(value) ? "true" : "false")
                          : QString::number(*static_cast<const int *>(value));
        }
        _signals += signal.name() + '(' + values.join(", ") + ')';
        return -1;
    }

private:
    const int SLOT_OFFSET = QObject::staticMetaObject.methodCount();
    const QMetaObject *const _class;
    QStringList _signals;
};
