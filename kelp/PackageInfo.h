// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PACKAGEINFO_H
#define KELP_PACKAGEINFO_H

#include <kelp/Export.h>

#include <QtCore/QList>
#include <QtCore/QLocale>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariantList>

namespace kelp {

class PackageInfoPrivate;

/*!
 * The package that the running application came in, as its manifest describes it: identity, version, author,
 * languages and the platform that it needs.
 *
 * \code
 * const kelp::PackageInfo package;
 * about->setText(tr("%1 %2 by %3").arg(package.name(), package.version(), package.author()));
 * \endcode
 *
 * The manifest is the file "app/META-INF/MANIFEST.MF" below the current directory. It is read once, when the
 * object is made: later changes, of the file or of the current directory, do not show. Without a manifest, or
 * with a malformed one, warnings say so, and everything here is empty or, for versions, zero. An attribute
 * that is there and empty counts as missing.
 *
 * A user interface in QML reads the same values as properties; none of them ever changes.
 *
 * Threads: any thread may make one, and any thread may ask it while it lives.
 *
 * \sa ApplicationInfo
 */
class KELP_EXPORT PackageInfo : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString installId READ installId CONSTANT)
    Q_PROPERTY(QString signingHash READ signingHash CONSTANT)
    Q_PROPERTY(QString versionSigningHash READ versionSigningHash CONSTANT)
    Q_PROPERTY(QString authorSigningHash READ authorSigningHash CONSTANT)
    Q_PROPERTY(QString compatibilityVersion READ compatibilityVersion CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString author READ author CONSTANT)
    Q_PROPERTY(QVariantList locales READ localesQml CONSTANT)
    Q_PROPERTY(QString systemDependency READ systemDependency CONSTANT)
    Q_PROPERTY(QString description READ description CONSTANT)

public:
    /*! Reads the manifest, and warns when there is none that can be read. */
    explicit PackageInfo(QObject *parent = nullptr);
    ~PackageInfo() override;

    /*!
     * What the package is installed under: name and identifier joined by ".", with "." for each "-" of both,
     * so that "com-example" and "abc-12" give "com.example.abc.12". Empty if either is missing.
     */
    QString installId() const;

    /*! The package's identifier ("Package-Id"), with "." for each "-"; or empty. */
    QString signingHash() const;

    /*! The identifier of the package's version ("Package-Version-Id"), with "." for each "-"; or empty. */
    QString versionSigningHash() const;

    /*! The author's identifier ("Package-Author-Id"), with "." for each "-"; or empty. */
    QString authorSigningHash() const;

    /*! The version of the manifest's format ("Archive-Manifest-Version"); "0.0" if missing. */
    QString compatibilityVersion() const;

    /*! The package's name ("Package-Name"), with each "-" left as it is; or empty. */
    QString name() const;

    /*! The package's version ("Package-Version"); "0.0.0.0" if missing. */
    QString version() const;

    /*! The author's name ("Package-Author"); or empty. */
    QString author() const;

    /*!
     * The version of the platform that the application needs: what "Application-Requires-System" has after
     * its first "/", so that "platform/10.0.9" gives "10.0.9", or all of it where there is no "/".
     *
     * "0.0.0.0" if missing, as it is for a package of another type than "application"; empty if nothing
     * follows the "/".
     */
    QString systemDependency() const;

    /*! The package's description ("Package-Description"); or empty. */
    QString description() const;

    /*!
     * The languages that the package supports, in the order of "Package-Locale", where commas part their
     * names; or empty. White space counts as part of the comma, but not at the beginning and the end of the
     * value. A name that Qt does not know gives the C locale.
     */
    QList<QLocale> locales() const;

    /*! The same list as locales(), as QML reads it: each element is a QLocale. */
    QVariantList localesQml() const;

private:
    Q_DISABLE_COPY(PackageInfo)

    PackageInfoPrivate *d;
};

} // namespace kelp

#endif
