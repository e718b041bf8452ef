// SPDX-License-Identifier: Apache-2.0
// PpsObject's encoding: which text each variant becomes, and that there is all of it or nothing.

#include "FailingCodec.h"

#include <kelp/PpsObject.h>

#include <QtTest/QtTest>

#include <limits>

using kelp::PpsObject;

namespace {

const QVariantMap DEEP = {
    {"a", true},
    {"b", QVariantList{1, QVariant(), 2.5, QVariantMap{{"x", QVariantList{5000000000LL, "y"}}}}},
    {"c", QVariant()},
    {"d", 5u},
};

const struct {
    const char *name;
    QVariant value;
    const char *text;
} VALUES[] = {
    {"null", QVariant(), "k:json:null\n"},
    {"bool", false, "k:b:false\n"},
    {"int", -7, "k:n:-7\n"},
    {"unsigned int, as a double", 7u, "k:n:7.0\n"},
    {"long long", 5000000000LL, "k:n:5000000000\n"},
    {"double", 5.5, "k:n:5.5\n"},
    {"text", "Main cell", "k::Main cell\n"},
    {"lines", "two\nlines", "k:c:two\\nlines\n"},
    {"other letters, at the end of a plain text",
     QString::fromUtf8("0123456789 \xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"),
     "k::0123456789 \xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80\n"},
    {"object", QVariantMap{{"b", 1}, {"a", QVariantMap{{"\"", true}}}},
     "k:json:{\"a\":{\"\\\"\":true},\"b\":1}\n"},
    {"array", QVariantList{1, "a", QVariant(), QVariantList{2u}}, "k:json:[1,\"a\",null,[2.0]]\n"},
};

const QVariant UNFIT[] = {1ull,
                          QStringList("a"),
                          QByteArray("a"),
                          QChar('a'),
                          QString::fromUtf8("a\0b", 3),
                          QString::fromUtf8("\0\xc3\xa4", 3),
                          QVariant::fromValue(1.0f),
                          std::numeric_limits<double>::quiet_NaN()};

} // namespace

class tst_PpsEncoding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindOfValueHasItsText()
    {
        for (const auto &row : VALUES) {
            bool ok = false;
            QCOMPARE(PpsObject::encode({{"k", row.value}}, &ok), QByteArray(row.text));
            QVERIFY2(ok, row.name);
        }
        QCOMPARE(PpsObject::encode({{"z", 1}, {QString::fromUtf8("\xc3\xa4"), 2}, {"a", 3}}),
                 QByteArray("a:n:3\nz:n:1\n\xc3\xa4:n:2\n"));
        bool ok = false;
        QCOMPARE(PpsObject::encode({}, &ok), QByteArray());
        QVERIFY(ok);
    }

    void oneUnfitValueAnywhereFailsTheWhole()
    {
        for (const QVariant &unfit : UNFIT) {
            const QVariantMap placings[] = {
                {{"a", 1}, {"b", unfit}},
                {{"a", 1}, {"b", QVariantList{1, QVariantMap{{"c", unfit}}}}},
                {{"a", QVariantMap{{"b" + QString(QChar(0)), 1}}}},
            };
            for (const QVariantMap &data : placings) {
                bool ok = true;
                QVERIFY2(PpsObject::encode(data, &ok).isNull() && !ok, unfit.typeName());
            }
        }
    }

    void whicheverCallFailsNothingPartialIsGiven()
    {
        int failures = 0;
        for (bool ok = false; !ok; ++failures) {
            FailingCodec::countdown = failures + 1;
            const QByteArray text = PpsObject::encode(DEEP, &ok);
            QCOMPARE(ok, FailingCodec::countdown > 0);
            QCOMPARE(text.isNull(), !ok);
            QCOMPARE(FailingCodec::alive, 0);
        }
        FailingCodec::countdown = 0;
        QVERIFY(failures > 16); // one for each call at each depth
    }
};

QTEST_APPLESS_MAIN(tst_PpsEncoding)
#include "tst_PpsEncoding.moc"
