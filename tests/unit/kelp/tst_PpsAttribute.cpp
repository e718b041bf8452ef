// SPDX-License-Identifier: Apache-2.0
// PpsAttribute: what each kind of value gives, equals and prints.

#include "PpsAttributePrivate.h"

#include <QtCore/QDebug>
#include <QtCore/QMetaEnum>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using kelp::PpsAttribute;
using kelp::PpsAttributeFlag;

namespace {

using Attributes = QList<PpsAttribute>;

template <typename Value>
PpsAttribute of(const Value &value, PpsAttributeFlag::Types flags = {})
{
    return kelp::PpsAttributePrivate::make(value, flags);
}
PpsAttribute text(const char *value, PpsAttributeFlag::Types flags = {})
{
    return of(QString::fromUtf8(value), flags);
}

const long long LARGE = 1LL << 40;

// Each scalar accessor's result, the sizes of the containers, and the print.
const struct {
    const char *name;
    PpsAttribute attribute;
    const char *values;
    const char *printed;
} ROWS[] = {
    {"none", {}, "0 0 0 false '' 0 0", "PpsAttribute( None ) "},
    {"int", of(5), "5 5 5 true '5' 0 0", "PpsAttribute( Number,  QFlags(),  5 ) "},
    {"long long", of(LARGE), "0 1099511627776 1.09951e+12 true '1099511627776' 0 0",
     "PpsAttribute( Number,  QFlags(),  1099511627776 ) "},
    {"double", of(1.5), "2 2 1.5 true '1.5' 0 0", "PpsAttribute( Number,  QFlags(),  1.5 ) "},
    {"whole double", of(1000000.0), "1000000 1000000 1e+06 true '1000000' 0 0",
     "PpsAttribute( Number,  QFlags(),  1e+06 ) "},
    {"inexact double", of(2.1 + 0.2), "2 2 2.3 true '2.3' 0 0", "PpsAttribute( Number,  QFlags(),  2.3 ) "},
    {"bool", of(true), "1 1 1 true 'true' 0 0", "PpsAttribute( Bool,  QFlags(),  true ) "},
    {"string", text("42"), "42 42 42 true '42' 0 0", "PpsAttribute( String,  QFlags(),  \"42\" ) "},
    {"special characters", text("\"\\\n\xc3\xa4"), "0 0 0 true '\"\\\n\xc3\xa4' 0 0",
     "PpsAttribute( String,  QFlags(),  \"\"\\\n\xc3\xa4\" ) "},
    {"array", of(Attributes{of(5), text("hi", PpsAttributeFlag::Created)}), "0 0 0 false '' 2 0",
     "PpsAttribute( Array,  QFlags(),  (PpsAttribute(Number, QFlags(), 5), PpsAttribute(String, "
     "QFlags(0x4), \"hi\")) ) "},
    {"object", of(PpsAttributeMap{{"a", {}}, {"b", of(false)}}, PpsAttributeFlag::Types(QFlag(INT_MIN | 1))),
     "0 0 0 false '' 0 2",
     "PpsAttribute( Object,  QFlags(0x1|0x80000000),  QMap((\"a\", PpsAttribute(None))(\"b\", "
     "PpsAttribute(Bool, QFlags(), false))) ) "},
};

const double NEXT = std::nextafter(5.0, 6.0);
const struct {
    const char *name;
    PpsAttribute left;
    PpsAttribute right;
    bool areEqual;
} PAIRS[] = {
    {"nothing", {}, {}, true},
    {"kinds of numbers", of(5), of(5LL), true},
    {"int and double", of(5), of(5.0), true},
    {"int and double but for rounding", of(5), of(NEXT), true},
    {"long long and another double", of(LARGE), of(LARGE + 8.0), false},
    {"doubles", of(5.0), of(NEXT), false},
    {"NaN", of(std::numeric_limits<double>::quiet_NaN()), of(std::numeric_limits<double>::quiet_NaN()),
     false},
    {"long longs", of(LARGE << 20), of((LARGE << 20) + 1), false},
    {"number and text", of(5), text("5"), false},
    {"flags", of(5), of(5, PpsAttributeFlag::Deleted), false},
    {"case", text("a"), text("A"), false},
    {"lengths", of(Attributes{of(1)}), of(Attributes{of(1), of(1)}), false},
    {"flags inside", of(Attributes{of(1)}), of(Attributes{of(1, PpsAttributeFlag::Created)}), false},
    {"kinds inside", of(PpsAttributeMap{{"a", of(1)}}), of(PpsAttributeMap{{"a", of(1.0)}}), true},
    {"names inside", of(PpsAttributeMap{{"a", of(1)}}), of(PpsAttributeMap{{"b", of(1)}}), false},
};

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED // the only look-up by name that both versions have
    int
    registeredAs(const char *name)
{
    return QMetaType::type(name);
}
QT_WARNING_POP

QString printed(const PpsAttribute &attribute)
{
    QString text;
    QDebug(&text) << attribute;
    return text;
}

} // namespace

class tst_PpsAttribute : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAccessorAnswersForEveryType()
    {
        for (const auto &row : ROWS) {
            const PpsAttribute a = row.attribute;
            const QString values = QString("%1 %2 %3 %4 '%5' %6 %7")
                                       .arg(std::abs(a.toLongLong()) > INT_MAX ? 0 : a.toInt())
                                       .arg(a.toLongLong())
                                       .arg(a.toDouble(), 0, 'g', 6)
                                       .arg(a.toBool() ? "true" : "false", a.toString())
                                       .arg(a.toList().size())
                                       .arg(a.toMap().size());
            QVERIFY2(values == QString::fromUtf8(row.values), qPrintable(row.name + (": " + values)));
            QCOMPARE(printed(a), QString::fromUtf8(row.printed));
        }
    }

    void equalityIsOfTypesFlagsAndValues()
    {
        for (const auto &pair : PAIRS) {
            QVERIFY2((pair.left == pair.right) == pair.areEqual, pair.name);
            QVERIFY2((pair.right != pair.left) == !pair.areEqual, pair.name);
        }
    }

    void flagsPrintTheirBitsAndLeaveTheStreamsSpacing()
    {
        const PpsAttributeFlag::Types flags = PpsAttributeFlag::Incomplete | PpsAttributeFlag::Purged;
        QString text;
        QDebug(&text) << flags << 1;
        QDebug(&text).nospace() << flags << of(2) << of(Attributes()) << 3;
        QCOMPARE(text, "QFlags(0x1|0x10) 1 "
                       "QFlags(0x1|0x10)PpsAttribute(Number, QFlags(), 2)PpsAttribute(Array, QFlags(), ())3");
    }

    void theTypesHaveTheirNames()
    {
        QCOMPARE(QMetaEnum::fromType<PpsAttributeFlag::Types>().valueToKeys(31),
                 QByteArray("Incomplete|Deleted|Created|Truncated|Purged"));
        QCOMPARE(of(Attributes()).toVariant().userType(), registeredAs("QList<kelp::PpsAttribute>"));
        QCOMPARE(of(PpsAttributeMap()).toVariant().userType(), registeredAs("PpsAttributeMap"));
    }
};

QTEST_APPLESS_MAIN(tst_PpsAttribute)
#include "tst_PpsAttribute.moc"
