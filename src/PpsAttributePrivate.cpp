// SPDX-License-Identifier: Apache-2.0
// See PpsAttributePrivate.h. Each overload settles the attribute's type by the C++ type of its value.

#include "PpsAttributePrivate.h"

namespace kelp {

PpsAttribute PpsAttributePrivate::make(PpsAttribute::Type type, const QVariant &value, Flags flags)
{
    PpsAttribute attribute;
    PpsAttributePrivate &record = *attribute.d;
    record.type = type;
    record.value = value;
    record.flags = flags;
    return attribute;
}

PpsAttribute PpsAttributePrivate::make(const PpsAttributeMap &value, Flags flags)
{
    return make(PpsAttribute::Object, QVariant::fromValue(value), flags);
}

PpsAttribute PpsAttributePrivate::make(const QList<PpsAttribute> &value, Flags flags)
{
    return make(PpsAttribute::Array, QVariant::fromValue(value), flags);
}

PpsAttribute PpsAttributePrivate::make(const QString &value, Flags flags)
{
    return make(PpsAttribute::String, QVariant(value), flags);
}

PpsAttribute PpsAttributePrivate::make(bool value, Flags flags)
{
    return make(PpsAttribute::Bool, QVariant(value), flags);
}

PpsAttribute PpsAttributePrivate::make(double value, Flags flags)
{
    return make(PpsAttribute::Number, QVariant(value), flags);
}

PpsAttribute PpsAttributePrivate::make(long long value, Flags flags)
{
    return make(PpsAttribute::Number, QVariant(value), flags);
}

PpsAttribute PpsAttributePrivate::make(int value, Flags flags)
{
    return make(PpsAttribute::Number, QVariant(value), flags);
}

} // namespace kelp
