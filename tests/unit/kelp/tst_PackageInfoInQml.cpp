// SPDX-License-Identifier: Apache-2.0
// PackageInfo and ApplicationInfo as a user interface in QML makes and reads them.

#include "ManifestDirectory.h"
#include "MessageLog.h"

#include <kelp/ApplicationInfo.h>
#include <kelp/PackageInfo.h>

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

#include <memory>

namespace {

// Of these types and the language alone: Qt's own modules of QML need not be here. The bindings would be
// complained about if a property could change without notice.
const char USER_INTERFACE[] = R"(
import kelp 1.0
PackageInfo {
    id: p
    property ApplicationInfo a: ApplicationInfo {}
    property var ofPackage: ["installId", "signingHash", "versionSigningHash", "authorSigningHash",
        "compatibilityVersion", "name", "version", "author", "systemDependency", "description"]
    property var ofApplication: ["signingHash", "versionSigningHash", "title", "version", "description"]
    property string fromPackage: ofPackage.map(function(name) { return p[name] }).join()
    property string fromApplication: ofApplication.map(function(name) { return a[name] }).join()
    property string localeNames: p.locales.map(function(locale) { return locale.name }).join()
    function writable(info, names) {
        return names.filter(function(name) {
            try { info[name] = "x" } catch (error) { return false }
            return true
        }).join()
    }
    property string writableOnes: writable(p, ofPackage.concat("locales", "objectName")) +
        writable(a, ofApplication)
})";

} // namespace

class tst_PackageInfoInQml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPropertyIsReadAndNoneIsSet()
    {
        ManifestDirectory directory;
        QVERIFY(directory.write(ManifestDirectory::WHOLE));
        qmlRegisterType<kelp::PackageInfo>("kelp", 1, 0, "PackageInfo");
        qmlRegisterType<kelp::ApplicationInfo>("kelp", 1, 0, "ApplicationInfo");
        MessageLog messages;
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData(USER_INTERFACE, QUrl());
        const std::unique_ptr<QObject> object(component.create());

        QVERIFY2(object, qPrintable(component.errorString()));
        QCOMPARE(
            object->property("fromPackage").toString(),
            "com.example.app.abc.12,abc.12,v.1.p,au.1.p,1.2-3,com-example-app,1.2.3.4-p,A-p,10.0.9-r/2,d-p");
        QCOMPARE(object->property("localeNames").toString(), "en_US,fr_FR,de_DE");
        QCOMPARE(object->property("fromApplication").toString(), "ap.1,v.1.a,t-a,5.6-a,d-a");
        QCOMPARE(object->property("writableOnes").toString(), "objectName"); // as any object's
        QCOMPARE(messages.take().join('|'), "");
    }
};

QTEST_GUILESS_MAIN(tst_PackageInfoInQml)
#include "tst_PackageInfoInQml.moc"
