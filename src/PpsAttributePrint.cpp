// SPDX-License-Identifier: Apache-2.0
// How attributes and their flags are written to a debug stream: token by token, because Qt's own printers of flags,
// lists and maps differ between Qt 5 and 6.

#include <kelp/PpsAttribute.h>

#include "Messages.h"

namespace kelp {

namespace {

QByteArray textOf(PpsAttributeFlag::Types flags)
{
    QByteArray text("QFlags(");
    const char *separator = "";
    const unsigned int bits = static_cast<unsigned int>(static_cast<int>(flags));
    for (unsigned int bit = 1; bit != 0; bit <<= 1) {
        if (bits & bit) {
            text += separator + QByteArray("0x") + QByteArray::number(bit, 16);
            separator = "|";
        }
    }
    return text + ')';
}

void printNumber(QDebug &dbg, const PpsAttribute &number)
{
    switch (number.toVariant().userType()) {
    case QMetaType::Int:
        dbg << number.toInt();
        break;
    case QMetaType::LongLong:
        dbg << number.toLongLong();
        break;
    default:
        dbg << number.toDouble();
    }
}

void printList(QDebug &dbg, const QList<PpsAttribute> &list)
{
    const QDebugStateSaver saver(dbg);
    dbg.nospace() << '(';
    const char *separator = "";
    for (const PpsAttribute &element : list) {
        dbg << separator << element;
        separator = ", ";
    }
    dbg << ')';
}

void printMap(QDebug &dbg, const PpsAttributeMap &map)
{
    const QDebugStateSaver saver(dbg);
    dbg.nospace() << "QMap(";
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        dbg << '(' << Quoted{entry.key()} << ", " << entry.value() << ')';
    }
    dbg << ')';
}

// The type, the flags and the value. The flags and the comma after them are one token: no space comes between.
void printContent(QDebug &dbg, const PpsAttribute &attribute)
{
    const QByteArray flags = textOf(attribute.flags()) + ", ";
    switch (attribute.type()) {
    case PpsAttribute::None:
        dbg << "None";
        break;
    case PpsAttribute::Number:
        dbg << "Number, " << flags.constData();
        printNumber(dbg, attribute);
        break;
    case PpsAttribute::Bool:
        dbg << "Bool, " << flags.constData() << (attribute.toBool() ? "true" : "false");
        break;
    case PpsAttribute::String:
        dbg << "String, " << flags.constData() << Quoted{attribute.toString()};
        break;
    case PpsAttribute::Array:
        dbg << "Array, " << flags.constData();
        printList(dbg, attribute.toList());
        break;
    case PpsAttribute::Object:
        dbg << "Object, " << flags.constData();
        printMap(dbg, attribute.toMap());
        break;
    }
}

} // namespace

QDebug operator<<(QDebug dbg, PpsAttributeFlag::Types flags)
{
    return dbg << textOf(flags).constData();
}

QDebug operator<<(QDebug dbg, const PpsAttribute &attribute)
{
    dbg << "PpsAttribute(";
    printContent(dbg, attribute);
    return dbg << ')';
}

} // namespace kelp
