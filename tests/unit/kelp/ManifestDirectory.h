// SPDX-License-Identifier: Apache-2.0
// A temporary directory that is the current one while it exists, with a manifest or without.
#pragma once

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

class ManifestDirectory
{
public:
    // Has every attribute that is asked for, each with a value of its own.
    static constexpr char WHOLE[] =
        "Archive-Manifest-Version: 1.2-3\n\n"
        "Package-Id: abc-12\nPackage-Name: com-example-app\nPackage-Description: d-p\n"
        "Package-Version: 1.2.3.4-p\nPackage-Version-Id: v-1-p\nPackage-Author: A-p\n"
        "Package-Author-Id: au-1-p\nPackage-Locale: en_US , fr_FR,,de\nPackage-Type: application\n\n"
        "Application-Id: ap-1\nApplication-Name: t-a\nApplication-Description: d-a\n"
        "Application-Version: 5.6-a\nApplication-Version-Id: v-1-a\n"
        "Application-Requires-System: platform/10.0.9-r/2\n";

    ManifestDirectory() { _isReady = QDir::setCurrent(_directory.path()); }
    ~ManifestDirectory() { QDir::setCurrent(_previous); }
    Q_DISABLE_COPY(ManifestDirectory)

    // False when the manifest cannot be written.
    bool write(const QByteArray &manifest)
    {
        QFile file("app/META-INF/MANIFEST.MF");
        return _isReady && QDir().mkpath("app/META-INF") && file.open(QIODevice::WriteOnly) &&
               file.write(manifest) == manifest.size();
    }

private:
    const QString _previous = QDir::currentPath();
    QTemporaryDir _directory;
    bool _isReady = false;
};
