// SPDX-License-Identifier: Apache-2.0
// The methods that a class adds to its base, in the order of the meta-object, as text: "<type> <signature> <parameter
// names>; ", with "~<revision>" in front of those that have one and "*" in front of signals.
#pragma once

#include <QtCore/QMetaMethod>

inline QString methodsOf(const QMetaObject &type)
{
    QString methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        methods += (method.methodType() == QMetaMethod::Signal ? "*" : "") +
                   (method.revision() ? QString("~%1 ").arg(method.revision()) : QString()) +
                   method.typeName() + ' ' + method.methodSignature() + ' ' +
                   method.parameterNames().join(',') + "; ";
    }
    return methods;
}
