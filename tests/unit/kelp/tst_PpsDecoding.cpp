// SPDX-License-Identifier: Apache-2.0
// PpsObject's decoding: the attributes of a text with their flags, the same as plain variants, and all of it or nothing.

#include "FailingCodec.h"
#include "PpsDecoder.h"

#include <kelp/PpsObject.h>

#include <QtCore/QDataStream>
#include <QtCore/QDebug>
#include <QtTest/QtTest>

#include <climits>

using kelp::PpsAttribute;
using kelp::PpsDecoder;
using kelp::PpsObject;

namespace {

const char DEEP[] = "@o\na:b:true\nb:json:[1,null,2.5,{\"x\":[5000000000,\"y\"]}]\n-c\n*d::text\n";

// Texts, and the entries of what they are decoded to, as they print.
const struct {
    const char *text;
    const char *decoded;
} TEXTS[] = {
    {"", ""},
    {"@o\n", "@o=Object, QFlags(), QMap()"},
    {"+#@o\nn:n:5\n", "@o=Object, QFlags(0x4|0x8), QMap((\"n\", PpsAttribute(Number, QFlags(), 5)))"},
    {"-@o\n", "@o=Object, QFlags(0x2), QMap()"},
    {"!n:n:2147483647\n", "n=Number, QFlags(0x10), 2147483647"},
    {"n:n:5.0\n", "n=Number, QFlags(), 5"},
    {"b:b:false\ns::\xc3\xa4:b\n", "b=Bool, QFlags(), false s=String, QFlags(), \"\xc3\xa4:b\""},
    {"j:json:[null,[],{}]\n", "j=Array, QFlags(), (PpsAttribute(None), PpsAttribute(Array, QFlags(), ()), "
                              "PpsAttribute(Object, QFlags(), QMap()))"},
    {"z:json:null\n-y\n", "y=Object, QFlags(0x2), QMap() z=None"},
    {"k:json:{\"a\":1,\"a\":true}\n",
     "k=Object, QFlags(), QMap((\"a\", PpsAttribute(Bool, QFlags(), true)))"},
};

const QByteArray MALFORMED[] = {"@o\nj:json:[99999999999999999999]\n", "j:json:[\n",
                                QByteArray("a:n:1\n\0b:n:2\n", 13)};

QString printed(const PpsAttributeMap &attributes)
{
    QStringList entries;
    for (auto entry = attributes.cbegin(); entry != attributes.cend(); ++entry) {
        QString text;
        QDebug(&text).nospace() << entry.value();
        entries += entry.key() + '=' + text.mid(13).chopped(1);
    }
    return entries.join(' ');
}

// A form in which all types differ: comparing variants would also convert.
QByteArray exact(const QVariant &value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << value;
    return bytes;
}

const QString MARK(QChar(0xfeff)); // which many take for no character at the beginning of a text

// What is decoded to exactly what it was encoded from.
const QVariantMap MAPS[] = {
    {},
    {{"n", QVariant()}, {"b", QVariantList{true, false, QVariant()}}},
    {{"max", INT_MAX}, {"min", QVariantList{INT_MIN}}},
    {{"max", INT_MAX + 1LL}, {"min", QVariantList{INT_MIN - 1LL}}},
    {{"max", LLONG_MAX}, {"min", QVariantList{LLONG_MIN}}},
    {{"zero", -0.0}, {"least", QVariantList{5e-324, -0.0}}, {"large", 1e308}, {"whole", 2.0}},
    {{"empty", QVariantList{QVariantList(), QVariantMap(), QVariantList{QVariantList()}, ""}}, {"s", ""}},
    {{"s", "\n\"\\:\t\x7f"}, {"l", QVariantList{"\n\"\\:\t\x7f"}}},
    {{"@o", QVariantMap{{"a", QVariantMap{{"@x", 1}, {"-", 2}, {"", 3}}}}}, {"@p", QVariantMap()}},
    {{MARK + "k", MARK + "v"}, {MARK + QString(30, 'k'), MARK + MARK}, {"k", "v" + MARK}},
    {{"m", QVariantMap{{MARK + "k", QVariantList{MARK, MARK + "v"}}, {MARK, 1}}}},
    {{"@" + MARK, QVariantMap{{MARK, true}}}},
};

} // namespace

class tst_PpsDecoding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextHasItsAttributesAndPlainVariants()
    {
        for (const auto &row : TEXTS) {
            const QByteArray text = row.text;
            bool ok = false;
            const PpsAttributeMap attributes = PpsObject::decodeWithFlags(text, &ok);
            QCOMPARE(printed(attributes), QString::fromUtf8(row.decoded));
            QVERIFY(ok);
            ok = false;
            QCOMPARE(exact(PpsObject::decode(text, &ok)),
                     exact(PpsDecoder::variantMapFromPpsAttributeMap(attributes)));
            QVERIFY(ok);
            QCOMPARE(text, QByteArray(row.text)); // not parsed in place
        }
        const QVariantMap plain = PpsObject::decode("-a\nb:json:null\nc:n:5.0\nd:n:5\n");
        QCOMPARE(exact(plain),
                 exact(QVariantMap{{"a", QVariantMap()}, {"b", QVariant()}, {"c", 5.0}, {"d", 5}}));
    }

    void malformedTextsGiveNothing()
    {
        for (const QByteArray &text : MALFORMED) {
            PpsAttribute object;
            bool ok = true;
            QVERIFY2(PpsObject::decodeWithFlags(text, &object, &ok).isEmpty() && !ok, text);
            QVERIFY(!object.isValid());
            ok = true;
            QVERIFY2(PpsObject::decode(text, &ok).isEmpty() && !ok, text);
            QVERIFY(PpsObject::decode(text).isEmpty() && PpsObject::decodeWithFlags(text).isEmpty());
        }
    }

    void theObjectItselfIsTheFirstByName()
    {
        PpsAttribute object;
        PpsObject::decodeWithFlags("@b\n+*@a\nx:n:1\n", &object, nullptr);
        QCOMPARE(object.toString(), "@a");
        QCOMPARE(int(object.flags()), 5);

        bool ok = false;
        PpsObject::decodeWithFlags("", &object, &ok);
        QVERIFY(ok);
        QCOMPARE(object.toString(), "@a");                               // left as it was
        QCOMPARE(PpsObject::decodeWithFlags("@c\n", nullptr).size(), 1); // not ambiguous
    }

    void whicheverCallFailsNothingPartialIsGiven()
    {
        for (const bool isPlain : {false, true}) {
            int failures = 0;
            for (bool ok = false; !ok; ++failures) {
                FailingCodec::countdown = failures + 1;
                PpsAttribute object;
                const bool isEmpty = isPlain ? PpsObject::decode(DEEP, &ok).isEmpty()
                                             : PpsObject::decodeWithFlags(DEEP, &object, &ok).isEmpty();
                QCOMPARE(ok, FailingCodec::countdown > 0);
                QCOMPARE(isEmpty, !ok);
                QCOMPARE(object.isValid(), ok && !isPlain);
                QCOMPARE(FailingCodec::alive, 0);
            }
            FailingCodec::countdown = 0;
            QVERIFY(failures > 25); // one for each call at each depth
        }
    }

    void whatIsEncodedIsDecodedWithEveryType()
    {
        for (const QVariantMap &map : MAPS) {
            bool isEncoded = false;
            const QByteArray text = PpsObject::encode(map, &isEncoded);
            QVERIFY(isEncoded);
            QCOMPARE(exact(PpsObject::decode(text)), exact(map));
            const PpsAttributeMap attributes = PpsObject::decodeWithFlags(text);
            QCOMPARE(exact(PpsDecoder::variantMapFromPpsAttributeMap(attributes)), exact(map));
        }
    }
};

QTEST_APPLESS_MAIN(tst_PpsDecoding)
#include "tst_PpsDecoding.moc"
