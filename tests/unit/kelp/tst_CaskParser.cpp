// SPDX-License-Identifier: Apache-2.0
// The manifest's text: what it becomes, and which texts are refused with which warnings.

#include "CaskParser.h"
#include "ManifestDirectory.h"
#include "MessageLog.h"

#include <QtTest/QtTest>

using kelp::CaskParser;

namespace {

#define ARCHIVE "Archive-A: 1\n"
#define TYPE "Package-Type: application\n"
#define FORMAT "warning: CaskParser: file format error:  "
#define FAILED(section) "warning: CaskParser: Failed to parse the " section " section"
#define BAD_PREFIX(prefix) FORMAT "all keys in the current section should start with  \"" prefix "\"|"
#define BAD_SPACE FORMAT "an attribute line should not start with a white space|"
#define BAD_SEPARATOR FORMAT "an attribute line should contain a \": \" separator|"

const struct {
    const char *name, *manifest, *attributes; // the last in the form of "name=value|"
} GOOD[] = {
    {"three sections and more", ARCHIVE "\n" TYPE "\nApplication-B: 2\n\nrest",
     "Archive-A=1|Package-Type=application|Application-B=2|"},
    {"another type", ARCHIVE "\nPackage-Type: Application\n\n malformed",
     "Archive-A=1|Package-Type=Application|"},
    {"no type", ARCHIVE "\nPackage-B: 2\n\nApplication-B: 2\n", "Archive-A=1|Package-B=2|"},
    {"separators in a value", ARCHIVE "\nPackage-B: c: d :e: \n", "Archive-A=1|Package-B=c: d :e: |"},
    {"empty value", ARCHIVE "\nPackage-B: \n", "Archive-A=1|Package-B=|"},
    {"repeated name", "Archive-A: 1\n 2\nArchive-A: 3\n 4\n\nPackage-B: 5", "Archive-A=34|Package-B=5|"},
    {"repeated name behind a lesser one", "Archive-B: 1\nArchive-A: 2\nArchive-B: 3\n\nPackage-B: 5",
     "Archive-A=2|Archive-B=3|Package-B=5|"},
    {"short names", "Archive-: 1\nArchive-A: 2\nArchive-a: 3\n\nPackage-: 4",
     "Archive-=1|Archive-A=2|Archive-a=3|Package-=4|"},
    {"continuations with spaces", ARCHIVE "\nPackage-Name: abc\n  xyz\n \n : \n",
     "Archive-A=1|Package-Name=abc xyz: |"},
    {"continued type, no line end", ARCHIVE "\nPackage-Type: appli\n cation\n\nApplication-B: 2",
     "Archive-A=1|Package-Type=application|Application-B=2|"},
    {"CRLF and UTF-8", "Archive-A: \xc3\xa4\r\n \xe2\x82\xac\r\n\r\nPackage-B: \xf0\x9f\x98\x80\r\n",
     "Archive-A=\xc3\xa4\xe2\x82\xac|Package-B=\xf0\x9f\x98\x80|"},
};

const struct {
    const char *name, *manifest, *warnings;
} BAD[] = {
    {"empty file", "", FAILED("Archive")},
    {"empty line first", "\n" ARCHIVE, FAILED("Archive")},
    {"space first", " " ARCHIVE, BAD_SPACE FAILED("Archive")},
    {"tab first", "\t" ARCHIVE, BAD_PREFIX("Archive-") FAILED("Archive")},
    {"prefix of another case", "archive-A: 1\n", BAD_PREFIX("Archive-") FAILED("Archive")},
    {"colon without a space", "Archive-A:1\n", BAD_SEPARATOR FAILED("Archive")},
    {"archive section alone", ARCHIVE, FAILED("Package")},
    {"two empty lines", ARCHIVE "\n\n" TYPE "\nApplication-B: 2\n", FAILED("Package")},
    {"no empty line", ARCHIVE TYPE, BAD_PREFIX("Archive-") FAILED("Archive")},
    {"continuation after an empty line", ARCHIVE "\n 2\n" TYPE, BAD_SPACE FAILED("Package")},
    {"package section of another prefix", ARCHIVE "\nApplication-B: 2\n",
     BAD_PREFIX("Package-") FAILED("Package")},
    {"line without a separator", ARCHIVE "\n" TYPE "Package-B", BAD_SEPARATOR FAILED("Package")},
    {"no application section", ARCHIVE "\n" TYPE, FAILED("Application")},
    {"bad application section", ARCHIVE "\n" TYPE "\nApplication-B: 2\nPackage-B: 2",
     BAD_PREFIX("Application-") FAILED("Application")},
};

} // namespace

class tst_CaskParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aGoodManifestBecomesATable()
    {
        ManifestDirectory directory;
        MessageLog messages;
        for (const auto &row : GOOD) {
            QVERIFY(directory.write(row.manifest));
            CaskParser parser;
            const auto attributes = QString::fromUtf8(row.attributes).split('|', Qt::SkipEmptyParts);
            for (const QString &attribute : attributes) {
                const QString name = attribute.section('=', 0, 0);
                QVERIFY2(name + '=' + parser.attributeValue(name) == attribute, row.name);
            }
            QVERIFY2(parser.numberOfAttributes() == attributes.size(), row.name);
            QVERIFY2(messages.take().isEmpty(), row.name);
        }
    }

    void aBadManifestGivesWarningsAndNoAttribute()
    {
        ManifestDirectory directory;
        MessageLog messages;
        for (const auto &row : BAD) {
            QVERIFY(directory.write(row.manifest));
            CaskParser parser;
            QCOMPARE(QString(row.name) + ": " + messages.take().join('|'),
                     QString(row.name) + ": " + row.warnings);
            QVERIFY2(parser.numberOfAttributes() == 0, row.name);
            QVERIFY2(parser.attributeValue("Archive-A").isNull(), row.name);
        }
    }

    // Would take hours if each line had a cost that grows with those before it.
    void aLongNameWithAMillionContinuationsIsRead()
    {
        ManifestDirectory directory;
        const QByteArray name = "Archive-" + QByteArray(4000000, 'a');
        QVERIFY(directory.write(name + ": b" + QByteArray("\n c").repeated(1000000) + "\n\nPackage-B: 2"));

        const CaskParser parser;

        QCOMPARE(parser.attributeValue(name), QString("b").leftJustified(1000001, 'c'));
    }
};

QTEST_GUILESS_MAIN(tst_CaskParser)
#include "tst_CaskParser.moc"
