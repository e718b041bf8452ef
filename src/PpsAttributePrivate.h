// SPDX-License-Identifier: Apache-2.0
// What the copies of a PpsAttribute share, and the only way to make one that is not empty: the decoder's.
#pragma once

#include <kelp/PpsAttribute.h>

#include <QtCore/QSharedData>

namespace kelp {

class PpsAttributePrivate : public QSharedData
{
public:
    using Flags = PpsAttributeFlag::Types;

    static PpsAttribute make(const PpsAttributeMap &value, Flags flags);
    static PpsAttribute make(const QList<PpsAttribute> &value, Flags flags);
    static PpsAttribute make(const QString &value, Flags flags);
    static PpsAttribute make(bool value, Flags flags);
    static PpsAttribute make(double value, Flags flags);
    static PpsAttribute make(long long value, Flags flags);
    static PpsAttribute make(int value, Flags flags);

    QVariant
        value; // of the C++ type that goes with the type below; numbers keep the kind that they were made of
    PpsAttribute::Type type = PpsAttribute::None;
    Flags flags;

private:
    static PpsAttribute make(PpsAttribute::Type type, const QVariant &value, Flags flags);
};

} // namespace kelp
