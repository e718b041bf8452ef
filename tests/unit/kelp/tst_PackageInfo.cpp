// SPDX-License-Identifier: Apache-2.0
// PackageInfo and ApplicationInfo: what they make of the manifest's attributes, and their properties.

#include "ManifestDirectory.h"
#include "MessageLog.h"

#include <kelp/ApplicationInfo.h>
#include <kelp/PackageInfo.h>

#include <QtCore/QMetaProperty>
#include <QtTest/QtTest>

using kelp::ApplicationInfo;
using kelp::PackageInfo;

namespace {

// The names of the locales, or the text.
QString textOf(const QVariant &value)
{
    if (value.userType() != QMetaType::QVariantList) {
        return value.toString();
    }
    QStringList names;
    for (const QVariant &locale : value.toList()) {
        names += locale.toLocale().name();
    }
    return '[' + names.join(' ') + ']';
}

bool isConstant(const QMetaProperty &property)
{
    return property.isReadable() && property.isDesignable() && property.isScriptable() &&
           property.isStored() && property.isConstant() && !property.isWritable() && !property.isFinal();
}

// All properties, in their order.
QString describe(const QObject &info)
{
    QString text;
    const QMetaObject *type = info.metaObject();
    for (int i = type->propertyOffset(); i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        text += QString(isConstant(property) ? "%1=%2|" : "%1 is not constant|")
                    .arg(property.name(), textOf(property.read(&info)));
    }
    return text;
}

#define PACKAGE "Archive-A: 1\n\n"
#define APPLICATION PACKAGE "Package-Type: application\n\n"

const char PACKAGE_DEFAULTS[] = "installId=|signingHash=|versionSigningHash=|authorSigningHash=|"
                                "compatibilityVersion=0.0|name=|version=0.0.0.0|author=|locales=[]|"
                                "systemDependency=0.0.0.0|description=|";
const char APPLICATION_DEFAULTS[] = "signingHash=|versionSigningHash=|title=|version=0.0.0.0|description=|";

const struct {
    const char *manifest, *property, *value;
} EDGES[] = {
    {PACKAGE "Package-Id: a-1\nPackage-Name: ", "installId", ""},
    {PACKAGE "Package-Id: a-1\nPackage-Name: ", "signingHash", "a.1"},
    {PACKAGE "Package-Id: \nPackage-Name: a-1", "installId", ""},
    {PACKAGE "Package-Version: ", "version", "0.0.0.0"},
    {"Archive-Manifest-Version: \n\nPackage-B: 1", "compatibilityVersion", "0.0"},
    {APPLICATION "Application-Requires-System: 10.0.9", "systemDependency", "10.0.9"},
    {APPLICATION "Application-Requires-System: platform/", "systemDependency", ""},
    {APPLICATION "Application-Requires-System: ", "systemDependency", "0.0.0.0"},
    {PACKAGE "Package-Locale: ,fr_FR\xc2\xa0,\xe3\x80\x80"
             "de ,xx_unknown, ",
     "locales", "[fr_FR de_DE C]"},
};

} // namespace

class tst_PackageInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAManifestThereAreTheDefaults()
    {
        ManifestDirectory directory;
        MessageLog messages;
        QCOMPARE(describe(PackageInfo()), PACKAGE_DEFAULTS);
        QCOMPARE(describe(ApplicationInfo()), APPLICATION_DEFAULTS);
        const QString warning = "warning: CaskParser: Failed to open the MANIFEST.MF file";
        QCOMPARE(messages.take(), (QStringList{warning, warning})); // each object reads for itself
    }

    void aWholeManifestIsReadOnce()
    {
        ManifestDirectory directory;
        MessageLog messages;
        QVERIFY(directory.write(ManifestDirectory::WHOLE));
        const PackageInfo package;
        const ApplicationInfo application;
        QVERIFY(directory.write(PACKAGE "Package-Type: library\n\nApplication-Name: t\n"));

        QCOMPARE(describe(package),
                 "installId=com.example.app.abc.12|signingHash=abc.12|versionSigningHash=v.1.p|"
                 "authorSigningHash=au.1.p|compatibilityVersion=1.2-3|name=com-example-app|version=1.2.3.4-p|"
                 "author=A-p|locales=[en_US fr_FR de_DE]|systemDependency=10.0.9-r/2|description=d-p|");
        QCOMPARE(describe(application),
                 "signingHash=ap.1|versionSigningHash=v.1.a|title=t-a|version=5.6-a|description=d-a|");
        QCOMPARE(package.locales(), (QList<QLocale>{QLocale("en_US"), QLocale("fr_FR"), QLocale("de")}));
        QCOMPARE(describe(PackageInfo()), PACKAGE_DEFAULTS);
        QCOMPARE(describe(ApplicationInfo()), APPLICATION_DEFAULTS); // of a package of another type
        QVERIFY(messages.take().isEmpty());
    }

    void valuesAtTheEdges()
    {
        ManifestDirectory directory;
        for (const auto &row : EDGES) {
            QVERIFY(directory.write(row.manifest));
            QCOMPARE(row.manifest + textOf(PackageInfo().property(row.property)),
                     QString::fromUtf8(row.manifest) + row.value);
        }
    }
};

QTEST_GUILESS_MAIN(tst_PackageInfo)
#include "tst_PackageInfo.moc"
