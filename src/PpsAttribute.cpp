// SPDX-License-Identifier: Apache-2.0
// See kelp/PpsAttribute.h. Text and equality of numbers are settled here rather than by QVariant, which does both
// differently in Qt 5 and 6.

#include <kelp/PpsAttribute.h>

#include "PpsAttributePrivate.h"

namespace kelp {

namespace {

bool isDouble(const QVariant &number)
{
    return number.userType() == QMetaType::Double;
}

// By value, whatever the kinds: doubles exactly, a double and an integer but for rounding.
bool areEqualNumbers(const QVariant &left, const QVariant &right)
{
    if (isDouble(left) && isDouble(right)) {
        return left.toDouble() == right.toDouble();
    }
    if (isDouble(left) || isDouble(right)) {
        return qFuzzyCompare(left.toDouble(), right.toDouble());
    }
    return left.toLongLong() == right.toLongLong();
}

// The container of a variant that holds this very type: QVariant itself would also convert.
template <typename Container>
Container held(const QVariant &value)
{
    const bool isHeld = value.userType() == qMetaTypeId<Container>();
    return isHeld ? *static_cast<const Container *>(value.constData()) : Container();
}

} // namespace

PpsAttribute::PpsAttribute() : d(new PpsAttributePrivate) {}

PpsAttribute::PpsAttribute(const PpsAttribute &other) = default;

PpsAttribute &PpsAttribute::operator=(const PpsAttribute &other) = default;

PpsAttribute::~PpsAttribute() = default;

bool PpsAttribute::isValid() const
{
    return d->type != None;
}

PpsAttribute::Type PpsAttribute::type() const
{
    return d->type;
}

bool PpsAttribute::isNumber() const
{
    return d->type == Number;
}

bool PpsAttribute::isBool() const
{
    return d->type == Bool;
}

bool PpsAttribute::isString() const
{
    return d->type == String;
}

bool PpsAttribute::isArray() const
{
    return d->type == Array;
}

bool PpsAttribute::isObject() const
{
    return d->type == Object;
}

PpsAttributeFlag::Types PpsAttribute::flags() const
{
    return d->flags;
}

int PpsAttribute::toInt() const
{
    return d->value.toInt();
}

long long PpsAttribute::toLongLong() const
{
    return d->value.toLongLong();
}

double PpsAttribute::toDouble() const
{
    return d->value.toDouble();
}

bool PpsAttribute::toBool() const
{
    return d->value.toBool();
}

QString PpsAttribute::toString() const
{
    return isDouble(d->value) ? QString::number(d->value.toDouble(), 'g', 15) : d->value.toString();
}

QList<PpsAttribute> PpsAttribute::toList() const
{
    return held<QList<PpsAttribute>>(d->value);
}

PpsAttributeMap PpsAttribute::toMap() const
{
    return held<PpsAttributeMap>(d->value);
}

QVariant PpsAttribute::toVariant() const
{
    return d->value;
}

bool PpsAttribute::operator==(const PpsAttribute &other) const
{
    if (d->type != other.d->type || d->flags != other.d->flags) {
        return false;
    }
    switch (d->type) {
    case None:
        return true;
    case Array:
        return toList() == other.toList();
    case Object:
        return toMap() == other.toMap();
    case Number:
        return areEqualNumbers(d->value, other.d->value);
    default:
        return d->value == other.d->value;
    }
}

bool PpsAttribute::operator!=(const PpsAttribute &other) const
{
    return !(*this == other);
}

} // namespace kelp
